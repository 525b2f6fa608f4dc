// SPDX-License-Identifier: MIT

#include "ContentMimeData.h"

#include <cstring>

namespace desktop {

namespace {

constexpr const char* kUtf8Text = "text/plain;charset=utf-8";

} // namespace

ContentMimeData::ContentMimeData(std::shared_ptr<const Content> content) :
	fContent(std::move(content))
{
	for (const std::string& format : fContent->Formats())
		fFormats.append(QString::fromStdString(format));
}

// Not kept: whoever wants the same twice is rare, and a list of many files is long.
QVariant
ContentMimeData::retrieveData(const QString& format, QMetaType) const
{
	if (!fFormats.contains(format))
		return {};
	return QByteArray::fromStdString(fContent->Bytes(format.toStdString()));
}

bool
HasFormat(const QMimeData& data, const char* format)
{
	return data.hasFormat(QLatin1String(format)) ||
		(std::strcmp(format, format::kText) == 0 && data.hasFormat(QLatin1String(kUtf8Text)));
}

std::string
BytesOf(const QMimeData& data, const char* format)
{
	// Qt takes the plain name for UTF8_STRING and its like too.
	const bool plain = data.hasFormat(QLatin1String(format));
	return data.data(QLatin1String(plain ? format : kUtf8Text)).toStdString();
}

} // namespace desktop

// SPDX-License-Identifier: MIT

// Contents of ours in the form that Qt offers to other programs. Internal to this folder; GUI
// thread.

#pragma once

#include <desktop/Content.h>

#include <QMimeData>

namespace desktop {

class ContentMimeData : public QMimeData {
public:
	explicit ContentMimeData(std::shared_ptr<const Content> content);

	QStringList formats() const override { return fFormats; }
	bool hasFormat(const QString& format) const override { return fFormats.contains(format); }

protected:
	QVariant retrieveData(const QString& format, QMetaType type) const override;

private:
	const std::shared_ptr<const Content> fContent;
	QStringList fFormats;
};

// The bytes of a format of any program's; kText is found under its other names too.
bool HasFormat(const QMimeData& data, const char* format);
std::string BytesOf(const QMimeData& data, const char* format);

} // namespace desktop

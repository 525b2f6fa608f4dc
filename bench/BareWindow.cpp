// SPDX-License-Identifier: MIT

// An empty window of the least code that the desktop's library allows: what no program on it can
// start faster than, nor be smaller.

#include <QBackingStore>
#include <QGuiApplication>
#include <QPainter>
#include <QWindow>

namespace {

class BareWindow : public QWindow {
public:
	BareWindow() : fStore(this)
	{
		setSurfaceType(RasterSurface);
		setTitle(QStringLiteral("Bare"));
		resize(501, 476);
	}

protected:
	void exposeEvent(QExposeEvent*) override
	{
		if (!isExposed())
			return;
		const QRect all(QPoint(), size());
		fStore.resize(size());
		fStore.beginPaint(all);
		QPainter(fStore.paintDevice()).fillRect(all, Qt::white);
		fStore.endPaint();
		fStore.flush(all);
	}

private:
	QBackingStore fStore;
};

} // namespace

int
main(int argc, char** argv)
{
	qputenv("QT_XCB_GL_INTEGRATION", "none");
	QGuiApplication application(argc, argv);
	BareWindow window;
	window.show();
	return QGuiApplication::exec();
}

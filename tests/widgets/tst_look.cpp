#include "darktheme.h"
#include "playbackcontrolwidget.h"
#include "screenscale.h"
#include "softwareviewer.h"

#include <QApplication>
#include <QPainter>
#include <QtTest>

// How icons and the picture look on a screen with two pixels a point.
class TestLook : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void icons_haveASharpVariant()
    {
        const auto same = [](const QImage& seen, const QImage& expected) {
            const auto format = QImage::Format_ARGB32_Premultiplied;
            return seen.convertToFormat(format) == expected.convertToFormat(format);
        };
        for (const char* name : { "play", "pause", "stop", "stepfwd", "stepbwd", "seekstart",
                 "seekend", "volume", "mute" }) {
            const QString path = QLatin1String(":/icons/") + name;
            const QImage picture = QIcon(path).pixmap(16, 16).toImage();
            QCOMPARE(picture.size(), QSize(32, 32));
            QVERIFY2(same(picture, QImage(path + "@2x")), name);
        }
        const QIcon program(":/icons/application.png");
        QVERIFY(same(program.pixmap(128, 128).toImage(), QImage(":/icons/application@2x.png")));
    }

    void density_countsWhereTheDesktopNamesOne()
    {
        QVERIFY(screenscale::nameDensity("Xft.antialias:\t1\nXft.dpi:\t144\n"));
        for (const char* resources : { "", "Xft.dpi", "Xft.dpi:\t\n", "*Xft.dpiScale: 96\n" }) {
            QVERIFY2(!screenscale::nameDensity(resources), resources);
        }
    }

    void disabledButtons_areClearlyDarker()
    {
        PlaybackControlWidget controls;
        controls.resize(400, 42);
        const auto glyph = [&] {
            return qGray(controls.grab().toImage().pixel(400, 42));
        }; // in the play icon
        const int enabled = glyph();
        controls.setEnabled(false);
        QVERIFY2(enabled > 200, QByteArray::number(enabled));
        QVERIFY2(glyph() < 140, QByteArray::number(glyph()));
        QVERIFY2(glyph() > 80, QByteArray::number(glyph()));
    }

    void picture_isShownInDevicePixels()
    {
        SoftwareViewer viewer;
        viewer.resize(32, 18);
        QImage stripes(64, 36, QImage::Format_RGB32);
        stripes.fill(Qt::white);
        for (int x = 0; x < 64; x += 2) {
            QPainter(&stripes).fillRect(x, 0, 1, 36, Qt::black);
        }
        QSignalSpy rests(&viewer, &SoftwareViewer::rested);
        for (const auto format : { QImage::Format_RGB32, QImage::Format_RGB888 }) {
            viewer.setPixmap(
                QPixmap::fromImage(stripes.convertToFormat(format), Qt::NoFormatConversion));
            for (int time = 0; time < 2; ++time) {
                QImage shown = viewer.grab().toImage();
                shown.setDevicePixelRatio(1.0);
                QCOMPARE(shown.convertToFormat(QImage::Format_RGB32), stripes);
                QVERIFY(rests.wait()); // what was scaled is made anew
            }
            QCOMPARE(viewer.scaledTo({ 21, 12 }).toImage(),
                stripes.scaled(21, 12, Qt::IgnoreAspectRatio, Qt::SmoothTransformation));
        }
        QCOMPARE(viewer.imageWidth(), 32);
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication application(argc, argv);
    applyDarkTheme(application); // which brings the icons
    TestLook test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_look.moc"

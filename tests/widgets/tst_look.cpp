#include "darktheme.h"
#include "playbackcontrolwidget.h"
#include "softwareviewer.h"

#include <QApplication>
#include <QPainter>
#include <QtTest>

// How the controls look in the dark theme on a screen with two pixels a point.
class TestLook : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theme_isDarkInAllColourGroups()
    {
        QVERIFY(qApp->styleSheet().contains("QMenu::separator"));
        for (const auto group : { QPalette::Active, QPalette::Inactive, QPalette::Disabled }) {
            QCOMPARE(QApplication::palette().color(group, QPalette::Window), QColor(45, 45, 48));
            QCOMPARE(QApplication::palette().color(group, QPalette::Text), QColor(208, 208, 208));
        }
    }

    void icons_haveASharpVariant_data()
    {
        QTest::addColumn<int>("points");
        for (const char* name : { "play", "pause", "stop", "stepfwd", "stepbwd", "seekstart",
                 "seekend", "volume", "mute" }) {
            QTest::newRow(name) << 16;
        }
        QTest::newRow("application.png") << 128;
    }

    void icons_haveASharpVariant()
    {
        QFETCH(int, points);
        const QString name = QLatin1String(":/icons/") + QTest::currentDataTag();
        QString sharp = name;
        sharp.insert(sharp.endsWith(".png") ? sharp.size() - 4 : sharp.size(), "@2x");
        const QImage picture = QIcon(name).pixmap(points, points).toImage();
        QCOMPARE(picture.size(), QSize(points, points) * 2);
        const auto format = QImage::Format_ARGB32_Premultiplied;
        QCOMPARE(picture.convertToFormat(format), QImage(sharp).convertToFormat(format));
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
        viewer.setPixmap(QPixmap::fromImage(stripes));
        QImage shown = viewer.grab().toImage();
        shown.setDevicePixelRatio(1.0);
        QCOMPARE(shown.convertToFormat(QImage::Format_RGB32), stripes);
        QCOMPARE(viewer.imageWidth(), 64);
    }
};

int main(int argc, char** argv)
{
    qputenv("QT_SCALE_FACTOR", "2");
    QApplication application(argc, argv);
    applyDarkTheme(application);
    TestLook test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_look.moc"

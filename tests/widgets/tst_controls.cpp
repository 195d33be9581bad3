#include "playbackcontrolwidget.h"
#include "settings.h"
#include "volumewidget.h"
#include "zslider.h"

#include <QPushButton>
#include <QtTest>

namespace {

bool shows(const QPushButton* button, const char* icon)
{
    const auto format = QImage::Format_ARGB32_Premultiplied;
    return button->icon().pixmap(16, 16).toImage().convertToFormat(format)
        == QImage(icon).convertToFormat(format);
}

} // namespace

class TestControls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { settings() = Settings(); }

    void buttons_standInOrderAndReportClicks()
    {
        PlaybackControlWidget controls;
        controls.resize(400, 42);
        controls.grab(); // lays it out
        const std::pair<const char*, void (PlaybackControlWidget::*)()> expected[] = {
            { ":/icons/seekstart", &PlaybackControlWidget::seekStartClicked },
            { ":/icons/stepbwd", &PlaybackControlWidget::stepBackwardClicked },
            { ":/icons/play", &PlaybackControlWidget::playForwardClicked },
            { ":/icons/stepfwd", &PlaybackControlWidget::stepForwardClicked },
            { ":/icons/seekend", &PlaybackControlWidget::seekEndClicked }
        };
        int x = 400 / 2 - (5 * 30 + 4 * 4) / 2;
        for (const auto& [icon, signal] : expected) {
            auto* button = qobject_cast<QPushButton*>(controls.childAt(x + 15, 21));
            QVERIFY(button);
            QCOMPARE(button->geometry(), QRect(x, 6, 30, 30));
            QVERIFY2(shows(button, icon), icon);
            QSignalSpy clicked(&controls, signal);
            button->click();
            QCOMPARE(clicked.count(), 1);
            x += 34;
        }
        const auto* play = controls.findChild<QPushButton*>("play");
        controls.setPlaying(true);
        QVERIFY(shows(play, ":/icons/pause"));
        controls.setPlaying(false);
        QVERIFY(shows(play, ":/icons/play"));
    }

    void volume_startsFromTheStoredValues()
    {
        const struct {
            int stored;
            bool muted;
            int volume;
            int slider;
            const char* icon;
        } rows[] = { { 150, false, 150, 150, ":/icons/volume" },
            { 151, false, 100, 100, ":/icons/volume" }, { 70, true, 70, 0, ":/icons/mute" } };
        for (const auto& row : rows) {
            settings().volume = row.stored;
            settings().muted = row.muted;
            const VolumeWidget widget;
            QCOMPARE(widget.volume(), row.volume);
            QCOMPARE(widget.isMuted(), row.muted);
            QCOMPARE(widget.findChild<ZSlider*>()->value(), row.slider);
            QVERIFY(shows(widget.findChild<QPushButton*>(), row.icon));
        }
    }

    void mute_keepsTheVolumeForLater()
    {
        settings().volume = 70;
        VolumeWidget widget;
        auto* slider = widget.findChild<ZSlider*>();
        auto* button = widget.findChild<QPushButton*>();
        QSignalSpy changed(&widget, &VolumeWidget::volumeChanged);
        button->click();
        QVERIFY(settings().muted && shows(button, ":/icons/mute"));
        QCOMPARE(slider->value(), 0);
        QCOMPARE(settings().volume, 70);
        widget.setMuted(true); // no change, no signal
        button->click();
        QVERIFY(!settings().muted && shows(button, ":/icons/volume"));
        QCOMPARE(slider->value(), 70);
        QCOMPARE(changed, QList<QVariantList>({ { 0 }, { 70 } }));
    }

    void slider_setsTheVolumeAndUnmutes()
    {
        settings().volume = 70;
        VolumeWidget widget;
        auto* slider = widget.findChild<ZSlider*>();
        QSignalSpy changed(&widget, &VolumeWidget::volumeChanged);
        slider->setValue(30);
        widget.toggleMute();
        slider->setValue(120);
        QCOMPARE(settings().volume, 120);
        QCOMPARE(slider->value(), 120);
        QVERIFY(!settings().muted);
        widget.setVolume(500);
        QCOMPARE(slider->value(), 150);
        widget.setVolume(-1);
        QCOMPARE(settings().volume, 0);
        QCOMPARE(changed,
            QList<QVariantList>({ { 30 }, { 0 }, { 120 } })); // setting the volume tells nobody
    }
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"

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
    // Those of a library are not there by themselves; without, all icons would be alike.
    void initTestCase() { Q_INIT_RESOURCE(resources); }

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
            QVERIFY2(button && shows(button, icon), icon);
            QSignalSpy clicked(&controls, signal);
            button->click();
            QCOMPARE(clicked.count(), 1);
            x += 34;
        }
        controls.setPlaying(true);
        QVERIFY(shows(controls.findChild<QPushButton*>("play"), ":/icons/pause"));
    }

    void mute_keepsTheVolumeUntilTheSliderMoves()
    {
        settings().volume = 70;
        settings().muted = false;
        VolumeWidget widget;
        auto* slider = widget.findChild<ZSlider*>();
        auto* button = widget.findChild<QPushButton*>();
        QSignalSpy changed(&widget, &VolumeWidget::volumeChanged);
        const auto stands = [&](int position, int volume, bool muted) {
            return slider->value() == position && settings().volume == volume
                && settings().muted == muted
                && shows(button, muted ? ":/icons/mute" : ":/icons/volume");
        };
        button->click();
        QVERIFY(stands(0, 70, true));
        widget.setMuted(true); // no change, no signal
        button->click();
        QVERIFY(stands(70, 70, false));
        widget.toggleMute();
        slider->setValue(120);
        QVERIFY(stands(120, 120, false));
        widget.setVolume(500); // tells nobody
        QVERIFY(stands(150, 150, false));
        widget.setVolume(-1);
        QVERIFY(stands(0, 0, false));
        QCOMPARE(changed, QList<QVariantList>({ { 0 }, { 70 }, { 0 }, { 120 } }));
    }
};

QTEST_MAIN(TestControls)
#include "tst_controls.moc"

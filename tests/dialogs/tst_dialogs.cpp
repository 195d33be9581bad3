#include "mediainfodialog.h"
#include "mediastats.h"
#include "preferencesdialog.h"
#include "settings.h"

#include <QCheckBox>
#include <QLabel>
#include <QMessageBox>
#include <QtTest>

class TestDialogs : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void mediaInfo_showsTheFigures()
    {
        QCOMPARE(clockText(std::nan("")), "00:00:00.000");
        QVERIFY(clockText(1e300) > clockText(0)); // long, but no accident
        MediaInfoDialog dialog;
        dialog.show();
        const auto texts = [&dialog](bool visible) {
            QStringList result;
            for (const char* name :
                { "filename", "source", "frameRange", "frameRate", "duration", "currentTime",
                    "normalSize", "currentSize", "videoCache", "audioCache", "cachedRange" }) {
                const auto* label = dialog.findChild<QLabel*>(name);
                if (label->isVisible() == visible) {
                    result << label->text();
                }
            }
            return result.join('|');
        };
        QCOMPARE(texts(true), "<b>No Media</b>|||||||");
        dialog.setStats(mediaStats({ "/a/b & <i>c.mov", 250, 23.976, 1.5, 3600.0, { 1920, 1080 },
            { 960, 540 }, 12'345'678, 42, 350'000, 1.0, 2.345 }));
        QCOMPARE(texts(true),
            "<b>b &amp; &lt;i&gt;c.mov</b>|/a/b & <i>c.mov|1 - 250|23.976|01:00:00.000|"
            "00:00:01.500|1920x1080|960x540");
        QCOMPARE(texts(false), "12.3 MB (42 frames)|0.3 MB|1.00 - 2.35");
    }

    void warning_comesFromAClickAlone()
    {
        QString warnings;
        QTimer closer;
        connect(&closer, &QTimer::timeout, [&warnings] {
            if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
                warnings += box->windowTitle() + ": " + box->text();
                box->accept();
            }
        });
        closer.start(0);
        PreferencesDialog dialog;
        settings().openMediaInNewPlayers = true;
        dialog.loadSettings();
        auto* const box = dialog.findChild<QCheckBox*>("openMediaInNewPlayers");
        box->click();
        QVERIFY(!box->isChecked() && warnings.isEmpty());
        box->click();
        QCOMPARE(warnings, "Multiple Players Warning: A separate cache exists for each player");
    }
};

QTEST_MAIN(TestDialogs)
#include "tst_dialogs.moc"

#include "clips.h"
#include "playbackrig.h"

#include <QRandomGenerator>
#include <QtTest>

namespace {

// The sanitizers slow each order down many times, and find what they look for in fewer of them.
#if defined(__SANITIZE_ADDRESS__)
constexpr int orders = 200;
#else
constexpr int orders = 1000;
#endif
constexpr int requestsInOrder = 6;
constexpr int framesOfEveryClip = 150;

} // namespace

/// Whatever was asked for before, the last file and the last frame asked for are on show in the
/// end.
class TestRandomOrders : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void endOnTheLastFileAndFrame()
    {
        for (int order = 0; order < orders; ++order) {
            for (int i = 0; i < requestsInOrder; ++i) {
                ask();
            }
            const Clip& last = clip(m_names.at(order % m_names.size()));
            const int frame = m_random.bounded(1, last.frameCount + 1);
            QVERIFY2(m_rig.open(last.name), qPrintable(QString("order %1").arg(order)));
            if (order % 2 == 0) {
                goToAny(last.frameCount);
            }
            m_rig.goTo(frame, false, anyReach());
            QCOMPARE(m_rig.settledOn(frame), frame);
        }
    }

private:
    PlaybackManager::Reach anyReach()
    {
        return m_random.bounded(2) == 0 ? PlaybackManager::Reach::Backward
                                        : PlaybackManager::Reach::Target;
    }

    void goToAny(int frameCount)
    {
        const int frame = m_random.bounded(1, frameCount + 1);
        m_rig.goTo(frame, m_random.bounded(2) == 0, anyReach());
    }

    void ask()
    {
        switch (m_random.bounded(6)) {
        case 0:
            m_rig.request(m_names.at(m_random.bounded(m_names.size())));
            break;
        case 1:
            m_rig.manager.play();
            break;
        case 2:
            m_rig.manager.stop();
            break;
        default:
            goToAny(framesOfEveryClip);
        }
        if (m_random.bounded(2) == 0) {
            QTest::qWait(m_random.bounded(12));
        }
    }

    const QStringList m_names{ "opengop.mkv", "mpeg4.avi", "hevc.mp4", "flv1.flv", "mpeg2.mpg" };
    QRandomGenerator m_random{ 1000 };
    PlaybackRig m_rig;
};

QTEST_MAIN(TestRandomOrders)
#include "tst_randomorders.moc"

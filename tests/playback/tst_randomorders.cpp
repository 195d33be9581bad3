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
    void endOnTheLastFileAndFrame();

private:
    void ask();

    const QStringList m_names{ QStringLiteral("opengop.mkv"), QStringLiteral("mpeg4.avi"),
        QStringLiteral("hevc.mp4"), QStringLiteral("flv1.flv"), QStringLiteral("mpeg2.mpg") };
    QRandomGenerator m_random{ 1000 };
    PlaybackRig m_rig;
};

void TestRandomOrders::ask()
{
    switch (m_random.bounded(6)) {
    case 0:
        m_rig.manager.setMedia(
            clip(m_names.at(m_random.bounded(m_names.size()))).path, 256000000, 0.8F);
        break;
    case 1:
        m_rig.manager.play();
        break;
    case 2:
        m_rig.manager.stop();
        break;
    default:
        m_rig.goTo(m_random.bounded(1, framesOfEveryClip + 1), m_random.bounded(2) == 0);
    }
    if (m_random.bounded(2) == 0) {
        QTest::qWait(m_random.bounded(12));
    }
}

void TestRandomOrders::endOnTheLastFileAndFrame()
{
    for (int order = 0; order < orders; ++order) {
        for (int i = 0; i < requestsInOrder; ++i) {
            ask();
        }
        const Clip& last = clip(m_names.at(order % m_names.size()));
        const int frame = m_random.bounded(1, last.frameCount + 1);
        QVERIFY2(m_rig.open(last.path), qPrintable(QStringLiteral("order %1").arg(order)));
        m_rig.goTo(frame);
        QCOMPARE(m_rig.settledOn(frame), frame);
    }
}

QTEST_MAIN(TestRandomOrders)
#include "tst_randomorders.moc"

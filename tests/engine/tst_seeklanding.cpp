#include "seeklanding.h"

#include <QTest>

class TestSeekLanding : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aQuestionIsAnsweredOnceAndOnlyWithItsOwnSerial()
    {
        using Verdict = SeekLanding::Verdict;
        SeekLanding landing;
        QVERIFY(!landing.isAsked(0)); // the marker of a seek that nobody judges
        const int64_t first = landing.ask(4.5);
        const int64_t second = landing.ask(2.5);
        QVERIFY(!landing.isAsked(first) && !landing.answer(first, Verdict::Late));
        QVERIFY(landing.isAsked(second) && landing.answer(second, Verdict::Landed));
        QVERIFY(!landing.answer(second, Verdict::Late));
        QCOMPARE(landing.withdraw(), Verdict::Landed); // the answer came first
        const int64_t third = landing.ask(1.0);
        QCOMPARE(landing.withdraw(), Verdict::None);
        QVERIFY(!landing.isAsked(third) && !landing.answer(third, Verdict::Ended));
    }
};

QTEST_APPLESS_MAIN(TestSeekLanding)
#include "tst_seeklanding.moc"

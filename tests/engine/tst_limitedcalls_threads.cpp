#include "limitedcalls.h"

#include <QtTest>

#include <future>

class TestLimitedCalls : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void givenUp_isFollowedUp();
};

void TestLimitedCalls::givenUp_isFollowedUp()
{
    using namespace std::chrono_literals;
    const auto quick = [] { return 1; };
    std::promise<void> server;
    std::promise<int> late;
    LimitedCalls calls(100ms);
    QCOMPARE(calls.run(quick, [](int) { QFAIL("It was in time."); }), std::optional(1));
    const auto slow = [answer = server.get_future().share()] {
        answer.wait();
        return 2;
    };
    QVERIFY(!calls.run(slow, [&late](int result) { late.set_value(result); }));
    QVERIFY(!calls.run(quick, {}));
    server.set_value();
    QCOMPARE(late.get_future().get(), 2);
    QTRY_COMPARE(calls.run(quick, {}), std::optional(1));
}

QTEST_GUILESS_MAIN(TestLimitedCalls)
#include "tst_limitedcalls_threads.moc"

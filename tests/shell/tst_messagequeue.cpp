#include "messagequeue.h"

#include <QRandomGenerator>
#include <QtTest>

class TestMessageQueue : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void records_areReadAndWrittenWithinTheBlock()
    {
        constexpr int size = 12;
        // clang-format off
        const struct { char before[size + 1]; QString appended; char after[size + 1]; QString last; }
        blocks[] = {
            { "\0...........", "", "\0...........", "" },
            { "\0...........", "clip", "\4clip\0......", "clip" },
            { "\3one\0.......", "two", "\3one\3two\0...", "two" },
            { "\5first\0.....", "second", "\5first\6secon", "secon" }, // cut at the end
            { "\13elevenchars", "more", "\13elevenchars", "elevenchars" }, // no room
            { "\2ab\100cdefghi!", "more", "\2ab\100cdefghi!", "cdefghi!" }, // longer than the block
            { "\2ab\377cdefghi!", "", "\2ab\377cdefghi!", "ab" }, // a length of -1
            { "\2ab\200cdefghi!", "new", "\2ab\3new\0ghi!", "new" },
            { "\5ab\0cd\0.....", "", "\5ab\0cd\0.....", "ab" },
        };
        // clang-format on
        for (const auto& [before, appended, after, last] : blocks) {
            QByteArray block(before, size);
            MessageQueue queue({ block.data(), size });
            if (!appended.isEmpty()) {
                queue.append(appended);
            }
            QCOMPARE(block, QByteArray(after, size));
            QCOMPARE(queue.takeLast(), last);
            QCOMPARE(queue.takeLast(), QString());
        }
    }

    void garbage_neverLeadsOutOfTheBlock()
    {
        constexpr int size = 5000;
        const QByteArray guard(300, 'g');
        QRandomGenerator random(1);
        for (int round = 0; round < 2000; ++round) {
            const int most = random.bounded(1, 257); // short records, or any bytes
            QByteArray memory = QByteArray(size, '\0') + guard;
            std::generate_n(memory.begin(), size, [&] { return char(random.bounded(most)); });
            MessageQueue queue({ memory.data(), size });
            queue.append(QString(random.bounded(300), 'x'));
            queue.takeLast();
            queue.append("clip.mov");
            QCOMPARE(queue.takeLast(), QString("clip.mov"));
            QCOMPARE(memory.mid(size), guard);
        }
    }
};

QTEST_GUILESS_MAIN(TestMessageQueue)
#include "tst_messagequeue.moc"

#include "scrubslice.h"

#include <QTest>

class TestScrubSlice : public QObject {
    Q_OBJECT

    /// Plays a slice in blocks; its sample frame i holds i + 1 in the first channel and -(i + 1) in
    /// the second.
    static QVector<int> play(int frames, int blockFrames, bool forward, int scratchFrames)
    {
        QVector<int16_t> scratch(scratchFrames * 2, 0);
        for (int i = 0; i < frames && i < scratchFrames; ++i) {
            scratch[2 * i] = static_cast<int16_t>(i + 1);
            scratch[2 * i + 1] = static_cast<int16_t>(-i - 1);
        }
        QVector<int> heard;
        for (int position = 0; position < frames; position += blockFrames) {
            QVector<int16_t> out(blockFrames * 2, 99);
            ScrubSlice{ scratch.constData(), scratch.size(), 2, frames, position, forward }
                .copyBlock(out.data(), blockFrames);
            for (int i = 0; i < blockFrames; ++i) {
                heard << (out[2 * i] == -out[2 * i + 1] ? out[2 * i] : -1);
            }
        }
        return heard;
    }

private Q_SLOTS:
    void copyBlock_data()
    {
        QTest::addColumn<int>("blockFrames");
        QTest::addColumn<bool>("forward");
        QTest::addColumn<int>("scratchFrames");
        QTest::addColumn<QVector<int>>("heard"); // of a slice of 5 sample frames
        using Heard = QVector<int>;
        const auto row = [](const char* name, int block, bool forward, int scratch,
                             const Heard& heard) {
            QTest::newRow(name) << block << forward << scratch << heard;
        };
        row("forwards", 2, true, 50, { 1, 2, 3, 4, 5, 0 });
        row("forwards, shorter than a block", 8, true, 50, { 1, 2, 3, 4, 5, 0, 0, 0 });
        row("forwards, scratch too short", 2, true, 3, { 1, 2, 3, 0, 0, 0 });
        row("backwards, from beyond the end", 2, false, 50, { 0, 5, 4, 3, 2, 1 });
        row("backwards, longer blocks", 3, false, 50, { 0, 0, 5, 4, 3, 2 });
        row("backwards, reading before the start", 1, false, 50, { 5, 4, 3, 2, 1 });
        row("backwards, scratch too short", 3, false, 4, { 0, 0, 0, 4, 3, 2 });
        row("backwards, shorter than a block", 8, false, 50, { 0, 0, 0, 0, 0, 0, 0, 5 });
    }
    void copyBlock()
    {
        QFETCH(int, blockFrames);
        QFETCH(bool, forward);
        QFETCH(int, scratchFrames);
        QTEST(play(5, blockFrames, forward, scratchFrames), "heard");
    }

    void fittingScrubFrames_neverExceedsTheScratch()
    {
        QCOMPARE(fittingScrubFrames(4800, 2, 100000), 4800);
        QCOMPARE(fittingScrubFrames(192000, 8, 100000), 12500);
        QCOMPARE(fittingScrubFrames(-1, 1, 100000), -1);
    }
};

QTEST_GUILESS_MAIN(TestScrubSlice)
#include "tst_scrubslice.moc"

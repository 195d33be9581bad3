#include "scrubslice.h"

#include <QTest>

class TestScrubSlice : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void blocksGiveTheSliceInItsOrder()
    {
        using Heard = QVector<int>;
        const struct {
            const char* name;
            int blockFrames;
            bool forward;
            int scratchFrames;
            Heard heard; // of a slice of 5 sample frames
        } rows[] = { { "forwards", 2, true, 50, { 1, 2, 3, 4, 5, 0 } },
            { "forwards, shorter than a block", 8, true, 50, { 1, 2, 3, 4, 5, 0, 0, 0 } },
            { "forwards, scratch too short", 2, true, 3, { 1, 2, 3, 0, 0, 0 } },
            { "backwards, from beyond the end", 2, false, 50, { 0, 5, 4, 3, 2, 1 } },
            { "backwards, reading before the start", 1, false, 50, { 5, 4, 3, 2, 1 } },
            { "backwards, scratch too short", 3, false, 4, { 0, 0, 0, 4, 3, 2 } },
            { "backwards, shorter than a block", 8, false, 50, { 0, 0, 0, 0, 0, 0, 0, 5 } } };
        for (const auto& row : rows) {
            QVector<int16_t> scratch(row.scratchFrames * 2, 0);
            for (int i = 0; i < std::min(5, row.scratchFrames); ++i) {
                scratch[2 * i] = static_cast<int16_t>(i + 1);
                scratch[2 * i + 1] = static_cast<int16_t>(-i - 1); // the second channel
            }
            Heard heard;
            for (int position = 0; position < 5; position += row.blockFrames) {
                QVector<int16_t> out(row.blockFrames * 2, 99);
                ScrubSlice{ scratch.constData(), scratch.size(), 2, 5, position, row.forward }
                    .copyBlock(out.data(), row.blockFrames);
                for (int i = 0; i < out.size(); i += 2) {
                    heard << (out[i] == -out[i + 1] ? out[i] : -1);
                }
            }
            QVERIFY2(heard == row.heard, row.name);
        }
    }

    void fittingScrubFrames_neverExceedsTheScratch()
    {
        QCOMPARE(fittingScrubFrames(4800, 2, 100000), 4800);
        QCOMPARE(fittingScrubFrames(192000, 8, 100000), 12500);
    }
};

QTEST_GUILESS_MAIN(TestScrubSlice)
#include "tst_scrubslice.moc"

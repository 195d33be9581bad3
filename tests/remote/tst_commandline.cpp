#include "commandline.h"

#include <QtTest>

class TestCommandLine : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void lines_areUnderstood()
    {
        using Kind = RemoteCommand::Kind;
        const auto row = [](const QByteArray& line, const RemoteCommand& command) {
            QVERIFY2(parseCommandLine(line) == command, line);
        };
        row("frame 12.9\r\n", { Kind::Frame, {}, 12 });
        row("frame 1e3 extra words\n", { Kind::Frame, {}, 1000 });
        row(QByteArray("frame 1\0002\n", 10), { Kind::Frame, {}, 1 });
        row(" frame  -2147483648 ", { Kind::Frame, {}, -2147483647 - 1 });
        row("frameRelative -3", { Kind::FrameRelative, {}, -3 });
        row("rstart 12", { Kind::RangeStart, {}, 12 });
        row("rend -2", { Kind::RangeEnd, {}, -2 });
        row("exit now", { Kind::Exit, {} });
        for (const char* none : { "", " \r\n", "\"\"", "frame", "frame x", "frame nan", "frame inf",
                 "frame 1e39", "frame 2147483648", "frame -2147484000", "rstart 12.9", "rend 1e1",
                 "rstart 2147483648", "Frame 5", "frame\t5", "file", "file ''", "\"frame 5\"" }) {
            row(none, {});
        }
        row("file clip.mov 5", { Kind::OpenMedia, "clip.mov", 5, -1 });
        row("file clip.mov x 9.9", { Kind::OpenMedia, "clip.mov", -1, 9 });
        row("file clip.mov 1e40 inf", { Kind::OpenMedia, "clip.mov", -1, -1 });
        row("file \"/a b/c  d.mov\" 10 20 30", { Kind::OpenMedia, "/a b/c  d.mov", 10, 20 });
        row("\"file\" '/a b/c.mov'3", { Kind::OpenMedia, "/a b/c.mov", 3 });
        row("file '/it\"s.mov", { Kind::OpenMedia, "/it" });
        row("'file' /a 'b c'", { Kind::OpenMedia, " /a " }); // begins unquoted
        row("file \303\244.mov", { Kind::OpenMedia, "\303\244.mov" });
        row("file \"/a b/c.bmk\" 2", { Kind::OpenBookmarks, "/a b/c.bmk", 2 });
        row("file /a/c.BMK", { Kind::OpenMedia, "/a/c.BMK" });
        row("file /a/cbmk", { Kind::OpenMedia, "/a/cbmk" });
    }
};

QTEST_GUILESS_MAIN(TestCommandLine)
#include "tst_commandline.moc"

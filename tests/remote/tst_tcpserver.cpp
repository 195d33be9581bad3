#include "settings.h"
#include "tcpserver.h"

#include <QtTest>

class TestTcpServer : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init()
    {
        settings().tcpPort = 0; // any that is free
        m_heard.clear();
        m_server = std::make_unique<TcpServer>();
        QVERIFY(m_server->listen() && !m_server->listen());
        const auto hear = [this](const char* word) {
            return [this, word](const auto&... values) {
                m_heard << (QStringList(word) << ... << QVariant(values).toString()).join(' ');
            };
        };
        connect(m_server.get(), &TcpServer::fileChanged, hear("file"));
        connect(m_server.get(), &TcpServer::bookmarksFileChanged, hear("bookmarks"));
        connect(m_server.get(), &TcpServer::frameChanged, hear("f"));
        connect(m_server.get(), &TcpServer::frameChangedRelative, hear("r"));
        connect(m_server.get(), &TcpServer::rangeStartChanged, hear("s"));
        connect(m_server.get(), &TcpServer::rangeEndChanged, hear("e"));
    }

    void lines_areDoneInOrderUntilExit()
    {
        const auto client = connected();
        client->write("file \"/a b\" 1 2\nfile c.bmk\nframe 1\nframeRelative -2\n\nrstart 3\nren");
        QTRY_COMPARE(m_heard.size(), 5);
        client->write("d 4\r\nexit\nframe 5\n");
        QTRY_COMPARE(client->state(), QAbstractSocket::UnconnectedState);
        QCOMPARE(m_heard.join(','), "file /a b 1 2,bookmarks c.bmk -1 -1,f 1,r -2,s 3,e 4");
        QCOMPARE(client->bytesAvailable(), 0); // nothing is answered
        QTRY_VERIFY(!served());
    }

    void longLine_isDropped()
    {
        const auto client = connected();
        const QByteArray most = "frame 1" + QByteArray(LineReader::maxLine - 7, ' ') + '\n';
        client->write(most + "frame 2 " + most + "frame 3\n");
        QTRY_COMPARE(m_heard.join(','), "f 1,f 3");
    }

    void newClient_takesOver()
    {
        const auto first = connected();
        QPointer<QTcpSocket> firstServed = served();
        const auto second = connected();
        first->write("frame 1\n" + QByteArray(1'000'000, 'x'));
        second->write("frame 2\n");
        QTRY_COMPARE(m_heard.join(','), "f 2");
        QVERIFY(firstServed->bytesAvailable() <= 16384);
        second->disconnectFromHost();
        QTRY_COMPARE(served(), firstServed); // of two the right one is released
        m_server->readData(); // there is none to read from
        const auto third = connected();
        third->write("frame 3\n");
        QTRY_COMPARE(m_heard.join(','), "f 2,f 3");
        first->disconnectFromHost(); // which is heard in spite of all it has sent
        QTRY_VERIFY(!firstServed);
    }

    // Scripts connect anew for every line, and go. The window was busy meanwhile.
    void shortConnections_loseNothing()
    {
        QStringList expected;
        for (int i = 0; i < 20; ++i) {
            QTcpSocket client;
            client.connectToHost(QHostAddress::LocalHost, m_server->port());
            client.write(QString("frame %1\nframeRelative %1\n").arg(i).toUtf8());
            client.disconnectFromHost();
            QVERIFY(client.state() == client.UnconnectedState || client.waitForDisconnected());
            expected << QString("f %1").arg(i) << QString("r %1").arg(i);
        }
        QTRY_COMPARE(m_heard, expected);
    }

    void webPage_isShutOut()
    {
        const QByteArray tooLong(200'000, 'a');
        const QByteArray requests[] = { // up to the header, in packets apart by '|'
            "GET /frame HTTP/1.1\r\n", "GET /\r\n", "PO|ST / HT|TP/1.1|\r|\n",
            "frame /5 HTTP/1.1\r\n", "frame |5 |HTTP/2.0|\r\n",
            "GET /?" + tooLong + " HTTP/1.1\r\n", "G|ET /?" + tooLong + "|\r\n",
            "file /" + tooLong + " HTTP/1.1\r\n", "\026\003\001\n"
        }; // the last is encrypted
        for (const QByteArray& request : requests) {
            const auto client = connected();
            const QList<QByteArray> packets = (request + "\r\nframe 1\nexit\n").split('|');
            for (const QByteArray& packet : packets) {
                client->write(packet);
                QTest::qWait(packet == packets.last() ? 0 : 20); // so that it is read alone
            }
            QTRY_VERIFY2(client->state() == client->UnconnectedState, request.left(20));
            QVERIFY2(m_heard.isEmpty(), request.left(20));
            QTRY_VERIFY(!served());
        }
        const auto next = connected();
        next->write("frame 2\nfile \"/GET / HTTP/1.1\"\n");
        QTRY_COMPARE(m_heard.join(','), "f 2,file /GET / HTTP/1.1 -1 -1");
        QVERIFY(!isBrowserRequest("file \"/GET / HTTP/1.1\"\n", true));
    }

private:
    // Only when the server has it, too.
    std::unique_ptr<QTcpSocket> connected()
    {
        auto client = std::make_unique<QTcpSocket>();
        const QTcpSocket* const before = served();
        client->connectToHost(QHostAddress::LocalHost, m_server->port());
        [&] { QTRY_VERIFY(served() && served() != before); }();
        return client;
    }

    // The newest connection at the server's end.
    QTcpSocket* served()
    {
        const auto sockets = m_server->findChildren<QTcpSocket*>();
        return sockets.isEmpty() ? nullptr : sockets.last();
    }

    std::unique_ptr<TcpServer> m_server;
    QStringList m_heard;
};

QTEST_GUILESS_MAIN(TestTcpServer)
#include "tst_tcpserver.moc"

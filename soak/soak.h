#pragma once

#include "drivenplayer.h"
#include "footprint.h"
#include "soundserver.h"

#include <QElapsedTimer>
#include <QString>

#include <random>

/// Does to the program, for a while, whatever people and other programs can do to it, in an order
/// that the seed alone decides, and looks every few deeds whether it still shows the frame asked
/// for and how much of the machine it takes. Tells every deed on the standard output.
class Soak {
public:
    Soak(quint32 seed, int seconds);

    /// What went wrong; empty for nothing.
    QString run();

private:
    struct Deed {
        int weight; // how often it is done, against the others
        QString (Soak::*act)(); // what it has done, in words
    };
    static const QVector<Deed>& deeds();

    QString openGood();
    QString openBroken();
    QString launchAgain();
    QString jump();
    QString step();
    QString scrubTimeline();
    QString scrubPicture();
    QString play();
    QString loop();
    QString bookmarks();
    QString saveBookmarks();
    QString range();
    QString flood();
    QString webPage();
    QString cacheSize();
    QString windowSize();
    QString turnThere();
    QString sound();

    void check();
    QString showItsFrame(); // in words
    void end(int segmentsBefore);

    void makeFiles();
    void tell(const QString& what) const;
    QString press(const QStringList& keys);
    QString open(const QString& path);
    QString launch(const QStringList& arguments);
    QString send(const QByteArray& lines);
    /// From 0 on, below `count`.
    int any(int count) { return static_cast<int>(m_random() % static_cast<unsigned>(count)); }
    QString anyOf(const QStringList& list) { return list[any(list.size())]; }

    std::mt19937 m_random;
    const int m_seconds;
    const SoundServer m_sound;
    const int m_port = freePort();
    DrivenPlayer m_player;
    QElapsedTimer m_time;
    QStringList m_good; // paths
    QStringList m_broken;
    QString m_fault;
    QVector<Footprint> m_footprints; // since the player has settled
};

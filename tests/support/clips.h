#pragma once

#include <QString>
#include <QVector>

/// One test clip, as tools/clips.table describes it. Picture k (from 1) shows the number k and is
/// read by framecode; its sound is a tone with a beep at every whole second.
struct Clip {
    QString name; // file name, for example "mpeg4.avi"
    QString path; // absolute
    int width; // pixels, upright; 0 without video
    int height;
    int frameCount; // 0 without video
    double rate; // frames per second
    double seconds;
    bool hasVideo;
};

/// Every clip of the build tree, in the order of the table; built before any test that asks for
/// clips.
const QVector<Clip>& allClips();

/// The clip of that file name. An unknown name ends the test program with a message.
const Clip& clip(const QString& name);

/// The committed sample: H.264 and AAC in MP4, 640x360.
QString sampleClipPath();

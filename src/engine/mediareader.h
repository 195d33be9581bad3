#pragma once

#include "avhandles.h"

#include <atomic>
#include <cstdint>

class MediaSource;
class PacketQueue;

/// Opens a media file, reads its packets into the source's queues and seeks in it. Demuxer's thread
/// only. Results are the media library's: negative is a failure, nothing throws.
class MediaReader {
public:
    explicit MediaReader(MediaSource* mediaSource);
    void setMediaSource(MediaSource* mediaSource) { m_source = mediaSource; }

    /// Opens the file and the first audio and the first video stream whose decoders open. Only
    /// regular files are opened. Fails where neither kind of stream can be used.
    [[nodiscard]] int open();

    /// Opens one stream's decoder and records its properties in the source.
    [[nodiscard]] int openStream(int index);

    void close();

    /// Reads packets until a seek or an abort is requested (0), the file ends (AVERROR_EOF),
    /// reading fails or the file ends earlier than it did when it was opened, or, with maxPackets >
    /// 0, that many packets of any stream were read (0). A full queue holds it.
    [[nodiscard]] int readPackets(int maxPackets);

    /// True when a packet of either kind would find room at once.
    [[nodiscard]] bool hasRoom() const;

    /// Seeks to the key picture at or before `seconds` by the file's index, with fallbacks where
    /// that call fails.
    [[nodiscard]] int seek(double seconds);

    /// Seeks to the first packet of the file.
    [[nodiscard]] int seekToStart();

private:
    int openInput();
    int openStreams();
    int openVideo(int index, AvPtr<AVCodecContext> codec);
    int openAudio(int index, AvPtr<AVCodecContext> codec);
    int describeDuration();
    int scanDuration(double& seconds);
    [[nodiscard]] bool isInterrupted() const;
    [[nodiscard]] bool hasShrunk() const;
    void deliver(
        AvPtr<AVPacket>& packet, PacketQueue& queue, const std::atomic<bool>& unused) const;

    MediaSource* m_source; // not owned
    int64_t m_fileSize = 0; // bytes, when it was opened
};

#pragma once

#include "audioframebuffer.h"
#include "avhandles.h"
#include "keptspan.h"
#include "openingpicture.h"
#include "packetqueue.h"
#include "pictureshape.h"
#include "playbackclock.h"
#include "seeklanding.h"
#include "videoframecache.h"

#include <QString>

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>

struct AVStream;

/// The opened media file: format context, chosen streams and their properties, packet queues, frame
/// buffers, the request fields by which the threads talk to each other, and the playback clock.
/// Made and deleted by the playback manager, shared by pointer with the demuxer, the decoders and
/// the sound callback.
///
/// Three kinds of fields: atomics (who writes and reads them stands beside each), members that lock
/// themselves, and plain properties, which the demuxer writes while it opens the file and which are
/// valid once `opened` is set.
class MediaSource {
public:
    static constexpr int scratchSamples = 100000; // int16 values
    static constexpr double noPlayLimit = 999999.0; // seconds
    static constexpr double nothingDecoded = -std::numeric_limits<double>::infinity();

    explicit MediaSource(QString filename);
    ~MediaSource();
    MediaSource(const MediaSource&) = delete;
    MediaSource& operator=(const MediaSource&) = delete;

    // Any thread: the clock.
    void resetClock(double seconds) { clock.reset(seconds); }
    int64_t updateClock() { return clock.update(); }
    /// Seconds. With `update`, and while `playing`, the clock is advanced first.
    double clockTime(bool update);

    // Any thread: what the demuxer found; neutral values until `opened`.
    [[nodiscard]] double duration() const; // seconds, finite, never negative; 0.0 when unknown
    [[nodiscard]] double rate() const; // frames per second, -1.0 until opened
    [[nodiscard]] int videoWidth() const; // pixels, -1 until opened
    [[nodiscard]] int videoHeight() const;
    [[nodiscard]] double cachedStartTime() const { return videoFrames.startTime(); }
    [[nodiscard]] double cachedEndTime() const { return videoFrames.endTime(); }

    /// A decoder, at a flush marker: ends the discarding of its buffer, unless a newer seek than
    /// the marker's has begun meanwhile.
    void stopDiscarding(std::atomic<bool>& discarding, int64_t markerSerial) const;

    /// Any thread. True where pictures go by: full queues of them hold back the demuxer and so the
    /// sound. Without (sound only, a cover, a video that cannot be decoded) only the clock can.
    [[nodiscard]] bool picturesPaceSound() const;

    /// Any thread. Seconds up to which sound blocks may be dropped: the start of the cached
    /// pictures, or the clock where no pictures go by.
    double soundReferenceTime();

    /// Any thread. Seconds from which on sound is decoded ahead: the clock, or the end of the
    /// cached pictures.
    double soundNeededTime();

    /// Any thread. True where a pause of the sound holds up nothing: a full queue of its packets
    /// would otherwise stop the demuxer before the pictures that lie behind them in the file.
    [[nodiscard]] bool soundMayWait() const;

    // The file. Demuxer's thread, until `opened`; then read only, until close.
    // Contexts are declared before the queues and buffers, which are destroyed first.
    const QString filename;
    AvPtr<AVFormatContext> formatContext;
    AvPtr<AVCodecContext> audioCodec; // used by the audio thread alone once open
    AvPtr<AVCodecContext> videoCodec; // used by the video thread alone once open
    AVStream* audioStream = nullptr;
    AVStream* videoStream = nullptr;
    int audioStreamCount = 0;
    int audioStreamIndex = -1;
    int videoStreamCount = 0;
    int videoStreamIndex = -1;
    int channels = 0;
    int planar = 0;
    int bytesPerSample = 0;
    int sampleRate = 0; // Hz
    bool isCover = false; // the only picture is a cover, on show all the time
    bool hasConstantRate = false; // both of the rates that the file names are the same
    int width = -1; // pixels
    int height = -1; // pixels
    PictureTurn turn; // what the file asks for: phones store upright films on their side
    double pixelAspect = 1.0; // width of a stored pixel by its height
    double frameRate = -1.0; // frames per second; 25 where the file names none
    double videoDelay =
        0.0; // seconds; 0, as pictures carry the time of the packet that released them
    double playableDuration = 0.0; // seconds; what duration() gives
    double containerDuration = 0.0; // seconds; where the stream's last picture is taken to end
    std::atomic<bool> opened{ false }; // demuxer sets (release) when the properties above stand

    // Requests. Written by the GUI thread but where a comment says otherwise.
    std::atomic<bool> playing{ false }; // the clock advances only while true
    std::atomic<bool> seekRequested{ false }; // release: publishes seekTime; cleared by the demuxer
    std::atomic<double> seekTime{ 0.0 }; // seconds
    // Seconds before seekTime whose pictures are wanted, too; published like it. 0: only those few
    // that every seek keeps.
    std::atomic<double> seekReach{ 0.0 };
    std::atomic<double> playUntil{ noPlayLimit }; // seconds; playing pauses by itself there
    std::atomic<bool> abortRequested{ false }; // every engine loop ends
    std::atomic<double> volume{ 1.0 }; // output gain
    std::atomic<bool> audioResyncRequested{ false }; // cleared by the sound callback
    std::atomic<bool> scrubRequested{
        false
    }; // release; cleared by the sound callback at the slice's end
    std::atomic<bool> scrubForward{ true };
    std::atomic<int32_t> scrubSampleCount{
        0
    }; // sample frames; set to 0 by the callback at the slice's end

    // Sound output. The scratch array and the two fields after it belong to the sound callback.
    const std::unique_ptr<int16_t[]> audioScratch;
    int32_t scrubPosition = 0; // sample frames played of the slice
    bool scrubBufferStale = true; // the slice must be filled before it is played
    int32_t outputChannels = 2; // audio thread, before the stream starts
    std::atomic<int32_t> audioErrorCode{ 0 }; // audio thread writes, GUI thread reads and clears

    // Decoders to demuxer.
    std::atomic<bool> soundUnused{
        false
    }; // audio thread sets: nobody takes sound packets, free them
    std::atomic<bool> videoUnused{ false }; // video thread sets: nobody takes picture packets
    std::atomic<bool> videoDecoding{ false }; // video thread sets: a decoder takes picture packets
    std::atomic<bool> readFailed{
        false
    }; // demuxer sets: reading broke off, no end marker will come
    std::atomic<bool> decodesAll{ false }; // video thread sets: no picture may be skipped any more
    SeekLanding landing; // demuxer asks, video thread answers
    KeptSpan kept; // pictures that are kept however far they lie behind the clock
    // Seconds, video thread: where the first picture since the last seek starts and the newest one
    // ends, kept or not. Both are set before the first picture can be in the cache.
    std::atomic<double> decodedFrom{ -nothingDecoded };
    std::atomic<double> decodedTo{ nothingDecoded };

    OpeningPicture openingPicture; // shown until the decoder's own comes

    PlaybackClock clock;
    PacketQueue audioPackets;
    PacketQueue videoPackets;
    AudioFrameBuffer audioFrames;
    VideoFrameCache videoFrames;
};

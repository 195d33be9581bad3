#pragma once

#include "avhandles.h"
#include "frametimer.h"
#include "rgbconverter.h"

#include <functional>
#include <set>
#include <utility>

class MediaSource;

/// Turns the packets of a source's video stream into pictures in its cache. Video thread only.
class VideoDecoder {
public:
    static constexpr int endOfStream = -999;

    /// `waitsForRoom` is called while a picture waits for a place in the full cache: one call of
    /// decodeNext() can yield more pictures than there are places.
    explicit VideoDecoder(MediaSource* mediaSource, std::function<void()> waitsForRoom = {});

    /// 0, or -1 where the conversion cannot be set up or the decoder is open already.
    [[nodiscard]] int open();

    /// Takes one entry of the packet queue. 0; -1 where there was none or it did not decode;
    /// endOfStream after the last picture.
    [[nodiscard]] int decodeNext();

    /// True, once, when the picture for the play head was skipped, as the next one comes late or
    /// never: it has to be decoded again, now without skipping.
    [[nodiscard]] bool takeSkippedNeeded() { return std::exchange(m_skippedNeeded, false); }

    /// False until the first picture has come out.
    [[nodiscard]] bool hasPicture() const { return m_timer.hasStart(); }

private:
    [[nodiscard]] int decodePacket(const AVPacket& packet);
    [[nodiscard]] int drain();
    void flush(const AVPacket& marker);
    void receivePictures();
    void handlePicture();
    [[nodiscard]] bool passesLanding(double time);
    [[nodiscard]] bool isWanted(double time);
    void skipWhatIsNotWanted(const AVPacket& packet);
    void drop(double time);
    void storeWhatRestsUntil(double time);
    void storeNewestDropped();
    void stopSkipping();
    void convertAndStore(const AVFrame& frame, double time);
    void awaitRoom();
    void awaitPlayHeadOutsideCache();
    void pauseForPlayHead();

    MediaSource* const m_source; // not owned
    const std::function<void()> m_waitsForRoom;
    const AvPtr<AVFrame> m_frame;
    const AvPtr<AVFrame> m_newestDropped; // since the last picture stored, else empty
    double m_newestDroppedTime = 0.0; // seconds
    // Seconds, since the last flush: the newest picture that came out, the newest one that may have
    // been skipped, and all of those that lie behind the last one stored.
    double m_newestTime;
    double m_newestSkippedTime;
    std::set<double> m_skippedTimes;
    bool m_gap = false; // a picture is missing behind the newest one stored
    FrameTimer m_timer;
    RgbConverter m_converter;
    bool m_skippedNeeded = false;
    bool m_initialized = false;
    bool m_judgesLanding = false; // the next picture answers where the seek went
    bool m_awaitsKey = false; // packets up to the next key picture count for nothing
    bool m_skipsToFlush = false; // the seek landed late: nothing counts until the next one
    int64_t m_landingSerial = 0;
};

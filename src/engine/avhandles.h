#pragma once

#include <memory>

struct AVCodecContext;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct SwrContext;
struct SwsContext;

/// Frees what the media libraries hand out; one overload per type. The only place where their free
/// calls stand.
struct AvFree {
    void operator()(AVCodecContext* context) const;
    void operator()(AVFormatContext* context) const;
    void operator()(AVFrame* frame) const;
    void operator()(AVPacket* packet) const;
    void operator()(SwrContext* context) const;
    void operator()(SwsContext* context) const;
};

template <typename T>
using AvPtr = std::unique_ptr<T, AvFree>; // AvPtr<AVFrame>, AvPtr<AVPacket>, ...

/// Empty packet and frame; null only when memory is out.
AvPtr<AVPacket> makePacket();
AvPtr<AVFrame> makeFrame();

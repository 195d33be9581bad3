#include "mediafile.h"

extern "C" {
#include <libavformat/avformat.h>
#include <libavutil/dict.h>
#include <libavutil/error.h>
#include <libavutil/imgutils.h>
}

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>

namespace {

constexpr int bytesPerPixel = 3;

// What a file with an accepted extension can really be. Playlists are left out: what they name
// could be a pipe, which would hold the thread.
constexpr char containerFormats[] =
    "aac,ac3,aiff,amr,asf,asf_o,avi,dv,eac3,flac,flv,gxf,h264,hevc,ivf,kux,live_flv,m4v,matroska,"
    "mjpeg,mov,mp3,mpeg,"
    "mpegts,mpegtsraw,mpegvideo,mxf,nsv,nut,ogg,rm,swf,vc1,w64,wav,webm,yuv4mpegpipe";

int isSet(void* flag)
{
    return static_cast<std::atomic<bool>*>(flag)->load(std::memory_order_relaxed) ? 1 : 0;
}

} // namespace

AvPtr<AVFormatContext> openMediaFile(
    const QString& filename, std::atomic<bool>& isAborted, int& error)
{
    const std::string path = filename.toStdString();
    std::error_code fileError;
    if (!std::filesystem::is_regular_file(path, fileError)) {
        error = AVERROR(EINVAL); // a pipe or a device would hold the thread
        return nullptr;
    }
    AVFormatContext* context = avformat_alloc_context();
    if (!context) {
        error = AVERROR(ENOMEM);
        return nullptr;
    }
    context->interrupt_callback = { isSet, &isAborted };
    // The name is a file's even where it looks like an address, and a playlist inside it reaches no
    // network.
    AVDictionary* options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "file", 0);
    av_dict_set(&options, "format_whitelist", containerFormats, 0);
    error = avformat_open_input(&context, ("file:" + path).c_str(), nullptr, &options);
    av_dict_free(&options);
    return AvPtr<AVFormatContext>(context); // null on failure: the call has freed it
}

bool isCover(const AVStream& stream)
{
    return (stream.disposition & AV_DISPOSITION_ATTACHED_PIC) != 0;
}

bool isUsablePictureSize(int width, int height)
{
    return width > 0 && height > 0 && av_image_check_size(width, height, 0, nullptr) >= 0
        && (static_cast<int64_t>(width) * bytesPerPixel + bytesPerPixel) * height
        <= std::numeric_limits<int>::max();
}

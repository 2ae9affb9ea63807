#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

#include <memory>
#include <string>

namespace cratewell::decode {

template<auto release> struct ReleaseByAddress
{
    template<typename T> void operator()(T *object) const { release(&object); }
};

using FramePointer = std::unique_ptr<AVFrame, ReleaseByAddress<av_frame_free>>;
using PacketPointer = std::unique_ptr<AVPacket, ReleaseByAddress<av_packet_free>>;
using CodecPointer = std::unique_ptr<AVCodecContext, ReleaseByAddress<avcodec_free_context>>;
using FormatPointer = std::unique_ptr<AVFormatContext, ReleaseByAddress<avformat_close_input>>;

struct FreeScaler
{
    void operator()(SwsContext *scaler) const { sws_freeContext(scaler); }
};
using ScalerPointer = std::unique_ptr<SwsContext, FreeScaler>;

inline std::string errorText(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return text;
}

} // namespace cratewell::decode

#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavdevice/avdevice.h>
#include <libavformat/avformat.h>
#include <libavutil/imgutils.h>
#include <libavutil/opt.h>
#include <libswscale/swscale.h>
}

namespace Host {

// What is used of libav, by library.
#define HOST_AVUTIL_CALLS(call)                                                                    \
    call(av_dict_free) call(av_dict_set) call(av_frame_alloc) call(av_frame_free)                  \
        call(av_frame_get_buffer) call(av_frame_make_writable) call(av_free)                       \
            call(av_image_fill_arrays) call(av_log_get_level) call(av_log_set_level)               \
                call(av_malloc) call(av_opt_set) call(av_rescale_q) call(av_strerror)
#define HOST_AVCODEC_CALLS(call)                                                                   \
    call(av_packet_alloc) call(av_packet_free) call(av_packet_move_ref) call(av_packet_rescale_ts) \
        call(av_packet_unref) call(avcodec_alloc_context3) call(avcodec_find_encoder)              \
            call(avcodec_find_encoder_by_name) call(avcodec_free_context) call(avcodec_open2)      \
                call(avcodec_parameters_from_context) call(avcodec_receive_packet)                 \
                    call(avcodec_send_frame)
#define HOST_AVFORMAT_CALLS(call)                                                                  \
    call(av_find_input_format) call(av_read_frame) call(av_write_frame) call(av_write_trailer)     \
        call(avformat_alloc_output_context2) call(avformat_close_input)                            \
            call(avformat_free_context) call(avformat_new_stream) call(avformat_open_input)        \
                call(avformat_write_header) call(avio_alloc_context) call(avio_context_free)
#define HOST_AVDEVICE_CALLS(call) call(avdevice_register_all)
#define HOST_SWSCALE_CALLS(call) call(sws_freeContext) call(sws_getContext) call(sws_scale)

/// libav's functions under their own names. Its libraries bring some two hundred others along, so
/// they are loaded when a movie is made for the first time, and stay.
struct AvLibraries
{
    /// @return null, and the reason, where they are not installed
    static const AvLibraries* get(const char*& reason);

#define HOST_AV_MEMBER(name) decltype(&::name) name = nullptr;
    HOST_AVUTIL_CALLS(HOST_AV_MEMBER)
    HOST_AVCODEC_CALLS(HOST_AV_MEMBER)
    HOST_AVFORMAT_CALLS(HOST_AV_MEMBER)
    HOST_AVDEVICE_CALLS(HOST_AV_MEMBER)
    HOST_SWSCALE_CALLS(HOST_AV_MEMBER)
#undef HOST_AV_MEMBER

private:
    bool load();
};

} // namespace Host

#include "OS/Host/Screen/ScreenRecorder.h"

#include "OS/Host/Screen/AvLibraries.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <unistd.h>

namespace Host {

namespace {

constexpr int kFramesPerSecond = 30;
constexpr std::int64_t kBitsPerSecond = 4'000'000;
constexpr int kBufferBytes = 65'536;
constexpr AVRational kFrame = {1, kFramesPerSecond};
constexpr AVPixelFormat kPixels = AV_PIX_FMT_YUV420P;

// libav writes on standard error; while this lives it does not.
class Quiet
{
public:
    explicit Quiet(const AvLibraries& av) : av_(av), level_(av.av_log_get_level())
    {
        av_.av_log_set_level(AV_LOG_QUIET);
    }
    ~Quiet() { av_.av_log_set_level(level_); }
    Quiet(const Quiet&) = delete;
    Quiet& operator=(const Quiet&) = delete;

private:
    const AvLibraries& av_;
    int level_;
};

int writeAll(void* file, std::uint8_t* bytes, int count)
{
    const int descriptor = *static_cast<const int*>(file);
    for (int written = 0; written < count;) {
        const ssize_t now =
            write(descriptor, bytes + written, static_cast<std::size_t>(count - written));
        if (now < 0 && errno != EINTR)
            return AVERROR(errno);
        written += now > 0 ? static_cast<int>(now) : 0;
    }
    return count;
}

std::int64_t seekTo(void* file, std::int64_t offset, int whence)
{
    if (whence != SEEK_SET && whence != SEEK_CUR && whence != SEEK_END)
        return AVERROR(ENOSYS); // such as the question for the size
    const off_t position = lseek(*static_cast<const int*>(file), offset, whence);
    return position < 0 ? AVERROR(errno) : position;
}

// One recording: the display, an encoder and the movie. Everything is freed in the reverse order.
class Recording
{
public:
    Recording(const AvLibraries& av, int file) : av_(av), file_(file) {}
    ~Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    bool openDisplay();
    bool openEncoder();
    bool openMovie();
    bool run(int seconds);
    bool finish(int seconds);

    const std::string& error() const { return error_; }

private:
    bool failed(const char* what, int code);
    AVCodecContext* encoderFrom(const AVCodec* codec) const;
    bool encode(std::int64_t time);
    bool drain();
    bool writePending(std::int64_t end);

    const AvLibraries& av_;
    int file_;
    AVFormatContext* display_ = nullptr;
    AVCodecContext* encoder_ = nullptr;
    AVFormatContext* movie_ = nullptr;
    AVStream* track_ = nullptr;
    SwsContext* scaler_ = nullptr;
    AVFrame* frame_ = nullptr;
    AVPacket* grabbed_ = nullptr;
    AVPacket* encoded_ = nullptr;
    AVPacket* pending_ = nullptr; // waits for the next one, which tells how long it is shown
    bool hasPending_ = false;
    std::string error_;
};

Recording::~Recording()
{
    av_.sws_freeContext(scaler_);
    av_.av_frame_free(&frame_);
    for (AVPacket** packet : {&grabbed_, &encoded_, &pending_})
        av_.av_packet_free(packet);
    if (movie_) {
        if (movie_->pb) {
            av_.av_free(movie_->pb->buffer);
            av_.avio_context_free(&movie_->pb);
        }
        av_.avformat_free_context(movie_);
    }
    av_.avcodec_free_context(&encoder_);
    av_.avformat_close_input(&display_);
}

bool Recording::failed(const char* what, int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_.av_strerror(code, text, sizeof text);
    error_ = std::string(what) + ": " + text;
    return false;
}

bool Recording::openDisplay()
{
    AVDictionary* options = nullptr;
    av_.av_dict_set(&options, "framerate", AV_STRINGIFY(30), 0);
    static_assert(kFramesPerSecond == 30);
    const int status = av_.avformat_open_input(&display_, std::getenv("DISPLAY"),
                                               av_.av_find_input_format("x11grab"), &options);
    av_.av_dict_free(&options);
    return status >= 0 || failed("the display cannot be grabbed", status);
}

// @return the encoder opened for the display's size, even sides; null when it refuses
AVCodecContext* Recording::encoderFrom(const AVCodec* codec) const
{
    if (!codec)
        return nullptr;
    AVCodecContext* context = av_.avcodec_alloc_context3(codec);
    if (!context)
        return nullptr;
    context->width = display_->streams[0]->codecpar->width & ~1;
    context->height = display_->streams[0]->codecpar->height & ~1;
    context->pix_fmt = kPixels;
    context->time_base = kFrame;
    context->framerate = {kFramesPerSecond, 1};
    context->gop_size = kFramesPerSecond;
    context->max_b_frames = 0;
    context->bit_rate = kBitsPerSecond;
    context->flags |= AV_CODEC_FLAG_GLOBAL_HEADER;
    if (context->priv_data) // of libx264; others do not know them
        for (const auto& [option, value] :
             {std::pair{"preset", "ultrafast"}, {"tune", "zerolatency"}})
            av_.av_opt_set(context->priv_data, option, value, 0);
    if (av_.avcodec_open2(context, codec, nullptr) < 0)
        av_.avcodec_free_context(&context);
    return context;
}

bool Recording::openEncoder()
{
    const AVCodec* const choice[] = {av_.avcodec_find_encoder_by_name("libx264"),
                                     av_.avcodec_find_encoder_by_name("libopenh264"),
                                     av_.avcodec_find_encoder(AV_CODEC_ID_H264),
                                     av_.avcodec_find_encoder(AV_CODEC_ID_MPEG4)};
    for (const AVCodec* codec : choice) {
        encoder_ = encoderFrom(codec);
        if (encoder_)
            return true;
    }
    error_ = "no encoder for H.264 or MPEG-4";
    return false;
}

bool Recording::openMovie()
{
    int status = av_.avformat_alloc_output_context2(&movie_, nullptr, "mov", nullptr);
    if (status < 0)
        return failed("no movie", status);
    auto* buffer = static_cast<unsigned char*>(av_.av_malloc(kBufferBytes));
    movie_->pb = buffer ? av_.avio_alloc_context(buffer, kBufferBytes, 1, &file_, nullptr,
                                                 &writeAll, &seekTo)
                        : nullptr;
    track_ = av_.avformat_new_stream(movie_, nullptr);
    frame_ = av_.av_frame_alloc();
    grabbed_ = av_.av_packet_alloc();
    encoded_ = av_.av_packet_alloc();
    pending_ = av_.av_packet_alloc();
    const AVCodecParameters& source = *display_->streams[0]->codecpar;
    scaler_ = av_.sws_getContext(source.width, source.height,
                                 static_cast<AVPixelFormat>(source.format), encoder_->width,
                                 encoder_->height, kPixels, SWS_POINT, nullptr, nullptr, nullptr);
    if (!movie_->pb || !track_ || !frame_ || !grabbed_ || !encoded_ || !pending_ || !scaler_)
        return failed("no movie", AVERROR(ENOMEM));
    frame_->format = kPixels;
    frame_->width = encoder_->width;
    frame_->height = encoder_->height;
    status = av_.av_frame_get_buffer(frame_, 0);
    if (status >= 0)
        status = av_.avcodec_parameters_from_context(track_->codecpar, encoder_);
    track_->time_base = kFrame;
    track_->avg_frame_rate = {kFramesPerSecond, 1};
    if (status >= 0)
        status = av_.avformat_write_header(movie_, nullptr);
    return status >= 0 || failed("the movie cannot be written", status);
}

// Until the movie is as long as it shall be; a machine that is too slow shows fewer frames.
bool Recording::run(int seconds)
{
    const AVStream& source = *display_->streams[0];
    const auto pixels = static_cast<AVPixelFormat>(source.codecpar->format);
    std::int64_t first = AV_NOPTS_VALUE;
    std::int64_t last = -1;
    for (;;) {
        const int status = av_.av_read_frame(display_, grabbed_);
        if (status == AVERROR(EAGAIN))
            continue;
        if (status < 0)
            return failed("the display cannot be grabbed", status);
        if (first == AV_NOPTS_VALUE)
            first = grabbed_->pts;
        const std::int64_t time =
            std::max(av_.av_rescale_q(grabbed_->pts - first, source.time_base, kFrame), last + 1);
        const bool wanted = time < seconds * kFramesPerSecond;
        bool done = true;
        if (wanted) {
            std::uint8_t* planes[4];
            int strides[4];
            av_.av_image_fill_arrays(planes, strides, grabbed_->data, pixels,
                                     source.codecpar->width, source.codecpar->height, 1);
            done = av_.av_frame_make_writable(frame_) >= 0;
            if (done)
                av_.sws_scale(scaler_, planes, strides, 0, source.codecpar->height, frame_->data,
                              frame_->linesize);
            done = done && encode(time);
        }
        av_.av_packet_unref(grabbed_);
        last = time;
        if (!wanted || !done)
            return done;
    }
}

bool Recording::encode(std::int64_t time)
{
    frame_->pts = time;
    const int status = av_.avcodec_send_frame(encoder_, frame_);
    return status >= 0 ? drain() : failed("the encoder failed", status);
}

// Moves what the encoder has finished into the movie.
bool Recording::drain()
{
    for (;;) {
        const int status = av_.avcodec_receive_packet(encoder_, encoded_);
        if (status == AVERROR(EAGAIN) || status == AVERROR_EOF)
            return true;
        if (status < 0)
            return failed("the encoder failed", status);
        if (hasPending_ && !writePending(encoded_->dts))
            return false;
        av_.av_packet_move_ref(pending_, encoded_);
        hasPending_ = true;
    }
}

bool Recording::writePending(std::int64_t end)
{
    pending_->duration = end - pending_->dts;
    pending_->stream_index = track_->index;
    av_.av_packet_rescale_ts(pending_, kFrame, track_->time_base);
    int status = av_.av_write_frame(movie_, pending_);
    if (status >= 0)
        status = movie_->pb->error; // such as a full disk, which the movie's format does not heed
    av_.av_packet_unref(pending_);
    hasPending_ = false;
    return status >= 0 || failed("the movie cannot be written", status);
}

bool Recording::finish(int seconds)
{
    av_.avcodec_send_frame(encoder_, nullptr);
    if (!drain() || (hasPending_ && !writePending(seconds * kFramesPerSecond)))
        return false;
    int status = av_.av_write_trailer(movie_);
    if (status >= 0)
        status = movie_->pb->error;
    return status >= 0 || failed("the movie cannot be written", status);
}

} // namespace

std::string recordScreen(int file, int seconds)
{
    const char* reason = nullptr;
    const AvLibraries* av = AvLibraries::get(reason);
    if (!av)
        return reason;
    const Quiet quiet(*av);
    Recording recording(*av, file);
    if (recording.openDisplay() && recording.openEncoder() && recording.openMovie() &&
        recording.run(seconds) && recording.finish(seconds))
        return {};
    return recording.error();
}

} // namespace Host

#include "Platform/Foundation/NSFileURLProtocol.h"

#include "Platform/Foundation/GIOCallback.h"

#include <algorithm>

namespace veyra {

namespace {

constexpr int64_t chunk = 65536; // bytes

/// The file that the address names on this machine, or null.
GFile* fileOf(const NSURL& url) {
    char* host = nullptr;
    char* const path = g_filename_from_uri(url.absoluteString().utf8().c_str(), &host, nullptr);
    const bool isLocal = path && (!host || g_ascii_strcasecmp(host, "localhost") == 0);
    GFile* const file = isLocal ? g_file_new_for_path(path) : nullptr;
    g_free(host);
    g_free(path);
    return file;
}

std::shared_ptr<NSFileURLProtocol> selfOf(gpointer data) {
    return std::static_pointer_cast<NSFileURLProtocol>(fromCallbackData<NSURLProtocol>(data));
}

} // namespace

NSFileURLProtocol::NSFileURLProtocol(std::shared_ptr<const NSURLRequest> request,
                                     std::weak_ptr<NSURLProtocolClient> client)
    : NSURLProtocol(std::move(request), std::move(client)), _cancellable(g_cancellable_new()) {}

NSFileURLProtocol::~NSFileURLProtocol() {
    g_cancellable_cancel(_cancellable);
    g_clear_object(&_stream);
    g_clear_object(&_file);
    g_object_unref(_cancellable);
}

void NSFileURLProtocol::startLoading() {
    _file = fileOf(*request().URL());
    if (_file)
        query();
    else
        failLater(NSURLErrorBadURL);
}

void NSFileURLProtocol::stopLoading() {
    NSURLProtocol::stopLoading();
    g_cancellable_cancel(_cancellable);
}

void NSFileURLProtocol::failWith(const GError& error) {
    const NSURLErrorCode code = urlErrorCode(error, false);
    fail(code);
}

void NSFileURLProtocol::query() {
    g_file_query_info_async(
        _file, G_FILE_ATTRIBUTE_STANDARD_TYPE "," G_FILE_ATTRIBUTE_STANDARD_SIZE, G_FILE_QUERY_INFO_NONE,
        G_PRIORITY_DEFAULT, _cancellable,
        [](GObject* file, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            GFileInfo* const information = g_file_query_info_finish(G_FILE(file), result, &error);
            const auto self = selfOf(data);
            if (self && !self->hasEnded())
                information ? self->gotInformation(information) : self->failWith(*error);
            g_clear_error(&error);
            if (information)
                g_object_unref(information);
        },
        asCallbackData(shared_from_this()));
}

void NSFileURLProtocol::gotInformation(GFileInfo* information) {
    const GFileType type = g_file_info_get_file_type(information);
    if (type != G_FILE_TYPE_REGULAR)
        return fail(type == G_FILE_TYPE_DIRECTORY ? NSURLErrorFileIsDirectory : NSURLErrorNoPermissionsToReadFile);
    _left = g_file_info_get_size(information);
    open();
}

void NSFileURLProtocol::open() {
    g_file_read_async(
        _file, G_PRIORITY_DEFAULT, _cancellable,
        [](GObject* file, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            GFileInputStream* stream = g_file_read_finish(G_FILE(file), result, &error);
            const auto self = selfOf(data);
            if (self && !self->hasEnded())
                stream ? self->gotStream(G_INPUT_STREAM(stream)) : self->failWith(*error);
            g_clear_error(&error);
            g_clear_object(&stream);
        },
        asCallbackData(shared_from_this()));
}

void NSFileURLProtocol::gotStream(GInputStream* stream) {
    _stream = G_INPUT_STREAM(g_object_ref(stream));
    if (const auto listening = client())
        listening->didReceiveResponse({_left, 0});
    if (!hasEnded())
        read();
}

void NSFileURLProtocol::read() {
    if (_left <= 0)
        return finish();
    g_input_stream_read_bytes_async(
        _stream, static_cast<gsize>(std::min(_left, chunk)), G_PRIORITY_DEFAULT, _cancellable,
        [](GObject* stream, GAsyncResult* result, gpointer data) {
            GError* error = nullptr;
            GBytes* const bytes = g_input_stream_read_bytes_finish(G_INPUT_STREAM(stream), result, &error);
            const auto self = selfOf(data);
            if (self && !self->hasEnded())
                bytes ? self->gotBytes(bytes) : self->failWith(*error);
            g_clear_error(&error);
            g_bytes_unref(bytes);
        },
        asCallbackData(shared_from_this()));
}

void NSFileURLProtocol::gotBytes(GBytes* bytes) {
    gsize size = 0;
    const auto* data = static_cast<const char*>(g_bytes_get_data(bytes, &size));
    if (size == 0)
        return finish();
    _left -= static_cast<int64_t>(size);
    if (const auto listening = client())
        listening->didLoadData({data, size});
    if (!hasEnded())
        read();
}

} // namespace veyra

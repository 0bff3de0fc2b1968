#include "Tests/Platform/Foundation/CapturedLog.h"

#include <glib.h>

#include <mutex>
#include <span>

namespace veyra {
namespace {

std::mutex mutex;
bool isCapturing = false;
std::vector<std::string> captured;

std::string fieldNamed(std::span<const GLogField> fields, std::string_view name) {
    for (const GLogField& field : fields)
        if (field.key == name) {
            const auto* text = static_cast<const char*>(field.value);
            return field.length < 0 ? std::string(text) : std::string(text, static_cast<size_t>(field.length));
        }
    return {};
}

GLogWriterOutput write(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer) {
    const std::span<const GLogField> all(fields, count);
    if (fieldNamed(all, "GLIB_DOMAIN") != "veyra")
        return g_log_writer_default(level, fields, count, nullptr);
    const std::lock_guard guard(mutex);
    if (!isCapturing)
        return g_log_writer_default(level, fields, count, nullptr);
    captured.push_back((level == G_LOG_LEVEL_MESSAGE ? "message: " : "other: ") + fieldNamed(all, "MESSAGE"));
    return G_LOG_WRITER_HANDLED;
}

void capture(bool on) {
    static const bool installed = (g_log_set_writer_func(write, nullptr, nullptr), true);
    const std::lock_guard guard(mutex);
    isCapturing = on && installed;
    captured.clear();
}

} // namespace

CapturedLog::CapturedLog() {
    capture(true);
}

CapturedLog::~CapturedLog() {
    capture(false);
}

std::vector<std::string> CapturedLog::lines() const {
    const std::lock_guard guard(mutex);
    return captured;
}

} // namespace veyra

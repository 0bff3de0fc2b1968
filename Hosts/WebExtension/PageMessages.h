// The user messages that the module answers, sent by an application to a WebKitWebPage:
// - "veyra-when-idle": answered with an empty message once the page has been loaded, and all maps of all its frames are
//   idle and have put their last frame on the canvas. Maps that nobody can see count as idle.
// - "veyra-statistics": answered with a dictionary (a{sv}) of numbers (t), all of the process: "views", "contexts",
//   "frames-drawn", "frames-put", "animation-frames-requested", "processor-microseconds", and "frame-microseconds":
//   what the frames since the last such message took, 95th percentile.
// - "veyra-collect-garbage": runs the script engine's collector, then answers with an empty message. For tests.
// Web thread only.
#pragma once

#include <webkit2/webkit-web-extension.h>

namespace veyra {

/// Answers messages to the page from now on.
void answerMessages(WebKitWebPage* page);

/// Something has come to rest, or has gone, that a message may wait for.
void answerWaitingMessages();

} // namespace veyra

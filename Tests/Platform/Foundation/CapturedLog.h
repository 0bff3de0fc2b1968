// Collects what the process logs under the domain "veyra" while one of these exists. One at a time.
#pragma once

#include <string>
#include <vector>

namespace veyra {

class CapturedLog {
public:
    CapturedLog();
    ~CapturedLog();
    CapturedLog(const CapturedLog&) = delete;
    CapturedLog& operator=(const CapturedLog&) = delete;

    /// The messages so far, in order, each as "level: text", where the level of an ordinary message is "message".
    std::vector<std::string> lines() const;
};

} // namespace veyra

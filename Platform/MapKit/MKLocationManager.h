// The map framework's own location manager, one a process. Any thread.
#pragma once

namespace veyra {

class MKLocationManager {
public:
    static MKLocationManager& sharedLocationManager();
    /// Whether locations keep coming while the application is inactive. Here they always do: no process of ours is ever
    /// put to rest, so the setting is taken and changes nothing.
    void setContinuesWhileInactive(bool continues);

private:
    MKLocationManager() = default;
};

} // namespace veyra

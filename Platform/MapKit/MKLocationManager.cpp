#include "Platform/MapKit/MKLocationManager.h"

namespace veyra {

MKLocationManager& MKLocationManager::sharedLocationManager() {
    static auto* const manager = new MKLocationManager;
    return *manager;
}

void MKLocationManager::setContinuesWhileInactive(bool) {}

} // namespace veyra

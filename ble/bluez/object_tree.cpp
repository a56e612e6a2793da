#include "ble/bluez/object_tree.h"

namespace bluez {

void ObjectTree::Reset(const ObjectMap& objects) {
    std::lock_guard lock(mutex_);
    objects_ = objects;
}

void ObjectTree::Clear() {
    std::lock_guard lock(mutex_);
    objects_.clear();
}

void ObjectTree::Apply(const BusEvent& event) {
    std::lock_guard lock(mutex_);
    switch (event.kind) {
        case BusEvent::Kind::ObjectAdded:
            for (const auto& [interface, properties] : event.added) {
                objects_[event.path][interface] = properties;
            }
            break;
        case BusEvent::Kind::ObjectRemoved: {
            const auto object = objects_.find(event.path);
            if (object == objects_.end()) {
                break;
            }
            for (const std::string& interface : event.removed) {
                object->second.erase(interface);
            }
            if (object->second.empty()) {
                objects_.erase(object);
            }
            break;
        }
        case BusEvent::Kind::PropertiesChanged: {
            const auto object = objects_.find(event.path);
            if (object == objects_.end()) {
                break;  // not announced (yet): nothing to update
            }
            const auto properties = object->second.find(event.interface);
            if (properties == object->second.end()) {
                break;
            }
            for (const auto& [key, value] : event.changed) {
                properties->second[key] = value;
            }
            for (const std::string& key : event.invalidated) {
                properties->second.erase(key);
            }
            break;
        }
        case BusEvent::Kind::ServiceGone:
            objects_.clear();
            break;
        case BusEvent::Kind::ServiceBack:
            break;
    }
}

std::vector<std::pair<std::string, PropertyMap>> ObjectTree::ObjectsWith(
    const std::string& interface) const {
    std::lock_guard lock(mutex_);
    std::vector<std::pair<std::string, PropertyMap>> found;
    for (const auto& [path, interfaces] : objects_) {
        const auto properties = interfaces.find(interface);
        if (properties != interfaces.end()) {
            found.emplace_back(path, properties->second);
        }
    }
    return found;
}

std::optional<PropertyMap> ObjectTree::Properties(const std::string& path,
                                                  const std::string& interface) const {
    std::lock_guard lock(mutex_);
    const auto object = objects_.find(path);
    if (object == objects_.end()) {
        return std::nullopt;
    }
    const auto properties = object->second.find(interface);
    if (properties == object->second.end()) {
        return std::nullopt;
    }
    return properties->second;
}

}  // namespace bluez

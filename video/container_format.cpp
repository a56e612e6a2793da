#include "video/container_format.h"

std::string PathExtension(const std::string& path) {
    const size_t slash = path.find_last_of('/');
    const size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
    const size_t dot = path.find_last_of('.');
    if (dot == std::string::npos || dot < nameStart) {
        return {};
    }
    return path.substr(dot);
}

Container ContainerForPath(const std::string& path) {
    return PathExtension(path) == ".mp4" ? Container::Mp4 : Container::None;
}

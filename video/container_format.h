// Which file format a recording path asks for, by its extension.
#pragma once

#include <string>

enum class Container {
    None,  // not written by this program
    Mp4,   // H.264 video, AAC audio
};

// The part of the file name from its last dot ("" without one).
std::string PathExtension(const std::string& path);

// Case-sensitive: ".mp4" is MP4; ".MP4", ".wmv", ".wma" and anything else are
// refused. The Windows Media formats would need encoders that are GPL as
// shipped here, so they are not offered.
Container ContainerForPath(const std::string& path);

#include "video/microphone_source.h"

#include "video/gst_support.h"

MicrophoneSource MicrophoneSource::DefaultDevice() {
    MicrophoneSource source;
    source.wantsDefault_ = true;
    return source;
}

MicrophoneSource MicrophoneSource::TestTone() {
    return FromFactory(
        [] {
            GstElement* element = MakeElement("audiotestsrc", "microphone");
            if (element != nullptr) {
                g_object_set(element, "is-live", TRUE, nullptr);
            }
            return element;
        },
        "audiotestsrc");
}

MicrophoneSource MicrophoneSource::FromFactory(Factory factory, std::string name) {
    MicrophoneSource source;
    source.factory_ = std::move(factory);
    source.name_ = std::move(name);
    return source;
}

MicrophoneSource MicrophoneSource::Resolve(const std::string& defaultMicrophone) const {
    if (!wantsDefault_) {
        return *this;
    }
    if (defaultMicrophone.empty()) {
        return {};
    }
    return FromFactory(
        [defaultMicrophone] {
            GstElement* element = MakeElement("pulsesrc", "microphone");
            if (element != nullptr) {
                g_object_set(element, "device", defaultMicrophone.c_str(), nullptr);
            }
            return element;
        },
        defaultMicrophone);
}

GstElement* MicrophoneSource::CreateElement() const {
    return factory_ ? factory_() : nullptr;
}

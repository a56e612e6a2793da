// The sound source of recordings, chosen by the code that builds the capture
// manager: the default PulseAudio microphone, a stand-in element (tests,
// demonstrations), or none (video only).
#pragma once

#include <gst/gst.h>

#include <functional>
#include <string>

class MicrophoneSource {
public:
    using Factory = std::function<GstElement*()>;

    MicrophoneSource() = default;  // none

    // The sound server's default source when it is a real microphone; resolved
    // by Resolve() into a device or into none.
    static MicrophoneSource DefaultDevice();
    // A live test tone standing in for a microphone.
    static MicrophoneSource TestTone();
    // Any live audio source; `name` is for the log.
    static MicrophoneSource FromFactory(Factory factory, std::string name);

    // DefaultDevice becomes the named PulseAudio source, or none.
    MicrophoneSource Resolve(const std::string& defaultMicrophone) const;

    bool IsPresent() const { return static_cast<bool>(factory_); }
    bool WantsDefaultDevice() const { return wantsDefault_; }
    const std::string& Name() const { return name_; }
    // A new source element, null (logged) on failure.
    GstElement* CreateElement() const;

private:
    Factory factory_;
    std::string name_;
    bool wantsDefault_ = false;
};

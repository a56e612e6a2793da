// Small GStreamer helpers shared by the capture and playback code: one-time
// initialisation, owning pointers, element creation with a logged failure.
#pragma once

#include <gst/gst.h>

#include <memory>
#include <string>

#include "video/result_codes.h"

// Initialises GStreamer once for the process; safe to call from any thread.
bool EnsureGStreamer();

struct GstObjectUnref {
    void operator()(gpointer object) const {
        if (object != nullptr) {
            gst_object_unref(object);
        }
    }
};
template <typename T>
using GstPtr = std::unique_ptr<T, GstObjectUnref>;

struct GstCapsUnref {
    void operator()(GstCaps* caps) const {
        if (caps != nullptr) {
            gst_caps_unref(caps);
        }
    }
};
using GstCapsPtr = std::unique_ptr<GstCaps, GstCapsUnref>;

// A new element of `factory`, or null with one error line when the plugin is
// missing.
GstElement* MakeElement(const char* factory, const char* name = nullptr);

// Adds the elements (floating references taken over) to `bin` and links them
// in order; false with one error line when a link fails.
bool AddAndLink(GstBin* bin, std::initializer_list<GstElement*> chain);

// Sends every message of `element`'s bus to `handler` (on the posting thread).
void SetSyncHandler(GstElement* element, GstBusSyncHandler handler, gpointer data);

// A pipeline on the system clock, which all pipelines of the program share,
// with its messages going to `handler`.
GstElement* NewPipeline(const char* name, GstBusSyncHandler handler, gpointer data);

// Stops the pipeline (its streaming threads are gone when this returns),
// detaches its handler, releases it and clears the pointer.
void DisposePipeline(GstElement*& pipeline);

// Gives the memory that a finished clip's streaming threads freed back to the
// system. Their allocator arenas keep it otherwise, and each clip's threads
// may land on another arena: a long session would hold the peak of each.
void ReturnFreedMemory();

// The result code for an error reported on a bus.
HRESULT ResultFromError(const GError* error);

// "domain message (debug)" of an error message, for the log.
std::string DescribeError(GstMessage* message, HRESULT* result = nullptr);

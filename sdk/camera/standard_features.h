// The steps every typed feature accessor of the camera takes, written once: the node map
// test, the lookup, the cast, the access-mode tests and the write with verification, each
// with the result and log line callers know. A node is looked up anew for every step.
#pragma once

#include <cstdint>

#include "camera/feature_access.h"

namespace RYSDK::camera {

// What an accessor reports for a lookup the camera cannot serve.
struct FeatureRules {
    RESULT missing = RESULT_ERROR_XML_NOT_EXIST_NODE;        // no node of that name
    RESULT wrongKind = RESULT_ERROR_XML_NODE_ACCESS_FAILED;  // a node of another interface
    bool availableToWrite = false;  // writers refuse a node not available now, as readers do
};

// How an integer writer treats the value before the camera sees it. Width, Height and the
// packet size are clamped into the node's range first, then (for a step above 1) held to a
// multiple of the step unless below it.
struct IntegerWrite {
    bool clamp = false;
    int64_t step = 1;
    RESULT misaligned = RESULT_SUCCESS;
};

class StandardFeature {
  public:
    StandardFeature(const CameraShared& shared, const core::LogSite& site, const char* name,
                    FeatureRules rules = {})
        : StandardFeature(shared.nodeMap.get(), site, name, rules) {}
    StandardFeature(DeviceNodeMap* nodeMap, const core::LogSite& site, const char* name,
                    FeatureRules rules = {})
        : access_(nodeMap, site), name_(name), rules_(rules) {}

    // Writers: node map, node, kind, (available,) not read-only, then the write.
    RESULT SetInteger(int64_t value, IntegerWrite how = {}) const;
    RESULT SetEnumeration(int64_t value) const;
    RESULT SetBoolean(bool value) const;

    // Readers: node map, output, node, kind, available, then the read.
    RESULT GetInteger(int64_t* value) const;
    RESULT GetEnumeration(int64_t* value) const;
    RESULT GetBoolean(bool* value) const;

    // The node map test, then the caller's output: a null one is logged with `nullText` and
    // refused before any lookup.
    RESULT CheckOutput(const void* out, const wchar_t* nullText) const;

    // The available entries' integer values by position; a position past them leaves the
    // output (and `entry`, when given) and succeeds. The count of those entries.
    RESULT Lineup(unsigned int index, int64_t* value, RyGenApi::IEnumEntry** entry = nullptr) const;
    RESULT LineupCount(unsigned int* count) const;

    // The node checked as far as a writer checks it (without the write), for accessors
    // that write in their own way.
    template <typename Interface>
    RESULT ForWriting(Interface*& node) const {
        RESULT result = Find(node);
        if (result == RESULT_SUCCESS && rules_.availableToWrite &&
            !RyGenApi::IsAvailable(node->GetAccessMode()))
            result = RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        if (result == RESULT_SUCCESS)
            result = access_.CheckNotReadOnly(*node, name_);
        return result;
    }

    // As above; then a value outside those the accessor maps is refused as a parameter.
    template <typename Interface>
    RESULT ForWriting(Interface*& node, bool valueMapped) const {
        const RESULT result = ForWriting(node);
        return result == RESULT_SUCCESS && !valueMapped ? RESULT_ERROR_INVALID_PARAMETER : result;
    }

    template <typename Interface>
    RESULT Find(Interface*& node) const {
        RESULT result = access_.CheckNodeMap();
        if (result != RESULT_SUCCESS)
            return result;
        if (access_.CheckExists(name_, L"_GetNode(\"%ls\") is invalid") != RESULT_SUCCESS)
            return rules_.missing;
        node = access_.As<Interface>(name_);
        return node == nullptr ? rules_.wrongKind : RESULT_SUCCESS;
    }

    template <typename Interface>
    Interface* Node() const {
        return access_.As<Interface>(name_);
    }

    const char* Name() const noexcept { return name_; }
    const core::LogSite& Site() const noexcept { return access_.Site(); }

  private:
    template <typename Interface>
    RESULT ForReading(const void* out, Interface*& node) const;
    void LogWrite(const wchar_t* operation, int64_t value) const;

    FeatureAccess access_;
    const char* name_;
    FeatureRules rules_;
};

}  // namespace RYSDK::camera

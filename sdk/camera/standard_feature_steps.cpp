#include "camera/camera_log.h"
#include "camera/standard_features.h"
#include "core/platform/text.h"

namespace RYSDK::camera {

using RyGenApi::IBoolean;
using RyGenApi::IEnumeration;
using RyGenApi::IInteger;

void StandardFeature::LogWrite(const wchar_t* operation, int64_t value) const {
    RY_LOG_EVENT(access_.Site(), core::kLogDebug, L"%ls.%ls(%lld)", core::Widen(name_).c_str(),
                 operation, static_cast<long long>(value));
}

template <typename Interface>
RESULT StandardFeature::ForReading(const void* out, Interface*& node) const {
    RESULT result = access_.CheckNodeMap();
    if (result != RESULT_SUCCESS)
        return result;
    if (out == nullptr)
        return RESULT_ERROR_INVALID_PARAMETER;
    result = Find(node);
    if (result != RESULT_SUCCESS)
        return result;
    return RyGenApi::IsAvailable(node->GetAccessMode()) ? RESULT_SUCCESS
                                                        : RESULT_ERROR_XML_NODE_ACCESS_FAILED;
}

RESULT StandardFeature::SetEnumeration(int64_t value) const {
    IEnumeration* node = nullptr;
    const RESULT result = ForWriting(node);
    if (result != RESULT_SUCCESS)
        return result;
    Node<IEnumeration>()->SetIntValue(value, true);
    LogWrite(L"SetIntValue", value);
    return RESULT_SUCCESS;
}

RESULT StandardFeature::SetBoolean(bool value) const {
    IBoolean* node = nullptr;
    const RESULT result = ForWriting(node);
    if (result != RESULT_SUCCESS)
        return result;
    Node<IBoolean>()->SetValue(value, true);
    LogWrite(L"SetValue", value ? 1 : 0);
    return RESULT_SUCCESS;
}

RESULT StandardFeature::SetInteger(int64_t value, IntegerWrite how) const {
    IInteger* node = nullptr;
    RESULT result = Find(node);
    if (result != RESULT_SUCCESS)
        return result;
    if (how.clamp) {
        // Clamped first, so that the alignment is judged on what would be written.
        if (value < node->GetMin())
            value = node->GetMin();
        if (value > node->GetMax())
            value = node->GetMax();
        if (how.step > 1 && value >= how.step && value % how.step != 0) {
            RY_LOG_EVENT(access_.Site(), core::kLogErr, L"%ls(%lld) %% %lld",
                         core::Widen(name_).c_str(), static_cast<long long>(value),
                         static_cast<long long>(how.step));
            return how.misaligned;
        }
    }
    result = ForWriting(node);
    if (result != RESULT_SUCCESS)
        return result;
    Node<IInteger>()->SetValue(value, true);
    LogWrite(L"SetValue", value);
    return RESULT_SUCCESS;
}

RESULT StandardFeature::GetInteger(int64_t* value) const {
    IInteger* node = nullptr;
    const RESULT result = ForReading(value, node);
    if (result == RESULT_SUCCESS)
        *value = Node<IInteger>()->GetValue();
    return result;
}

RESULT StandardFeature::GetEnumeration(int64_t* value) const {
    IEnumeration* node = nullptr;
    const RESULT result = ForReading(value, node);
    if (result == RESULT_SUCCESS)
        *value = Node<IEnumeration>()->GetIntValue();
    return result;
}

RESULT StandardFeature::GetBoolean(bool* value) const {
    IBoolean* node = nullptr;
    const RESULT result = ForReading(value, node);
    if (result == RESULT_SUCCESS)
        *value = Node<IBoolean>()->GetValue();
    return result;
}

namespace {

// Entries a caller may pick: those the camera does not mark unavailable.
std::vector<RyGenApi::IEnumEntry*> Offered(IEnumeration& node) {
    RyGenApi::NodeList_t entries;
    node.GetEntries(entries);
    std::vector<RyGenApi::IEnumEntry*> offered;
    for (RyGenApi::INode* entry : entries) {
        auto* value = dynamic_cast<RyGenApi::IEnumEntry*>(entry);
        if (value != nullptr && entry->GetAccessMode() != RyGenApi::NA)
            offered.push_back(value);
    }
    return offered;
}

}  // namespace

RESULT StandardFeature::CheckOutput(const void* out, const wchar_t* nullText) const {
    const RESULT result = access_.CheckNodeMap();
    if (result != RESULT_SUCCESS || out != nullptr)
        return result;
    RY_LOG_EVENT(access_.Site(), core::kLogErr, L"%ls", nullText);
    return RESULT_ERROR_INVALID_PARAMETER;
}

RESULT StandardFeature::Lineup(unsigned int index, int64_t* value,
                               RyGenApi::IEnumEntry** entry) const {
    IEnumeration* node = nullptr;
    const RESULT result = ForReading(value, node);
    if (result != RESULT_SUCCESS)
        return result;
    const auto offered = Offered(*Node<IEnumeration>());
    // A position past the offered entries is no error: the caller's value stays.
    if (index < offered.size()) {
        *value = offered[index]->GetValue();
        if (entry != nullptr)
            *entry = offered[index];
    }
    RY_LOG_EVENT(access_.Site(), core::kLogDebug, L"nIndex(%d) nValue(%d)", index,
                 static_cast<int>(*value));
    return RESULT_SUCCESS;
}

RESULT StandardFeature::LineupCount(unsigned int* count) const {
    IEnumeration* node = nullptr;
    const RESULT result = ForReading(count, node);
    if (result == RESULT_SUCCESS)
        *count = static_cast<unsigned int>(Offered(*Node<IEnumeration>()).size());
    return result;
}

}  // namespace RYSDK::camera

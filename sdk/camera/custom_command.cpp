// Any feature by its GenICam name, its value as text: the generic door for features the
// typed accessors do not name.
#include <charconv>
#include <cstdlib>
#include <cstring>
#include <string>

#include "camera/camera_log.h"
#include "camera/feature_access.h"
#include "core/platform/text.h"
#include "rysdk/RyCamera.h"

namespace RYSDK {

using core::kLogDebug;
using core::kLogErr;
using RyGenApi::EInterfaceType;

namespace {

// The kind word every log line of a feature starts with, from the table of kinds below.
const wchar_t* KindWord(EInterfaceType type);

std::string FloatText(double value) {
    char text[64];
    const auto written = std::to_chars(text, text + sizeof(text), value);
    return std::string(text, written.ptr);
}

struct Answer {
    RESULT result = RESULT_SUCCESS;
    std::string text;
};

Answer Unsupported(const core::LogSite& site, EInterfaceType type) {
    RY_LOG_EVENT(site, kLogErr, L"%ls::RESULT_ERROR_XML_UNSUPPORTED_COMMAND", KindWord(type));
    return {RESULT_ERROR_XML_UNSUPPORTED_COMMAND, {}};
}

Answer NumericAnswer(RyGenApi::INode& node, int32_t selector) {
    if (auto* integer = dynamic_cast<RyGenApi::IInteger*>(&node)) {
        switch (selector) {
            case GET_CUSTOM_COMMAND_VALUE:
                return {RESULT_SUCCESS, std::to_string(integer->GetValue())};
            case GET_CUSTOM_COMMAND_MIN:
                return {RESULT_SUCCESS, std::to_string(integer->GetMin())};
            case GET_CUSTOM_COMMAND_MAX:
                return {RESULT_SUCCESS, std::to_string(integer->GetMax())};
            case GET_CUSTOM_COMMAND_INC:
                return {RESULT_SUCCESS, std::to_string(integer->GetInc())};
        }
    } else if (auto* floating = dynamic_cast<RyGenApi::IFloat*>(&node)) {
        switch (selector) {
            case GET_CUSTOM_COMMAND_VALUE:
                return {RESULT_SUCCESS, FloatText(floating->GetValue())};
            case GET_CUSTOM_COMMAND_MIN:
                return {RESULT_SUCCESS, FloatText(floating->GetMin())};
            case GET_CUSTOM_COMMAND_MAX:
                return {RESULT_SUCCESS, FloatText(floating->GetMax())};
            case GET_CUSTOM_COMMAND_INC:
                return {RESULT_SUCCESS, FloatText(floating->HasInc() ? floating->GetInc() : 0.0)};
        }
    }
    return {RESULT_ERROR_XML_UNSUPPORTED_COMMAND, {}};
}

Answer EnumerationAnswer(RyGenApi::IEnumeration& node, int32_t selector) {
    if (selector == GET_CUSTOM_COMMAND_VALUE) {
        RyGenApi::IEnumEntry* current = node.GetCurrentEntry();
        return {RESULT_SUCCESS, current != nullptr ? current->GetSymbolic() : std::string()};
    }
    const auto entries = camera::FeatureAccess::AvailableEntries(node);
    if (selector == GET_CUSTOM_COMMAND_NUM)
        return {RESULT_SUCCESS, std::to_string(entries.size())};
    if (selector >= GET_CUSTOM_COMMAND_INDEX) {
        const auto index = static_cast<size_t>(selector - GET_CUSTOM_COMMAND_INDEX);
        if (index >= entries.size())
            return {RESULT_ERROR_INVALID_PARAMETER, {}};
        return {RESULT_SUCCESS, entries[index]->GetSymbolic()};
    }
    return {RESULT_ERROR_XML_UNSUPPORTED_COMMAND, {}};
}

Answer ReadAnswer(const core::LogSite& site, RyGenApi::INode& node, int32_t selector) {
    const EInterfaceType type = node.GetPrincipalInterfaceType();
    switch (type) {
        case RyGenApi::intfIInteger:
        case RyGenApi::intfIFloat: {
            Answer answer = NumericAnswer(node, selector);
            if (answer.result == RESULT_ERROR_XML_UNSUPPORTED_COMMAND &&
                type == RyGenApi::intfIInteger)
                RY_LOG_EVENT(site, kLogErr,
                             L"INTEGER::UNKNOWN_COMMAND : cbpArgSize will be return 0xFFFFFF");
            else if (answer.result == RESULT_ERROR_XML_UNSUPPORTED_COMMAND)
                Unsupported(site, type);
            return answer;
        }
        case RyGenApi::intfIEnumeration: {
            Answer answer =
                EnumerationAnswer(dynamic_cast<RyGenApi::IEnumeration&>(node), selector);
            if (answer.result == RESULT_ERROR_XML_UNSUPPORTED_COMMAND)
                Unsupported(site, type);
            return answer;
        }
        case RyGenApi::intfIBoolean:
            if (selector != GET_CUSTOM_COMMAND_VALUE)
                return Unsupported(site, type);
            return {RESULT_SUCCESS, dynamic_cast<RyGenApi::IBoolean&>(node).GetValue() ? "1" : "0"};
        case RyGenApi::intfIString:
        case RyGenApi::intfIRegister:
            if (selector != GET_CUSTOM_COMMAND_VALUE)
                return Unsupported(site, type);
            return {RESULT_SUCCESS, dynamic_cast<RyGenApi::IValue&>(node).ToString()};
        case RyGenApi::intfICommand:
            RY_LOG_EVENT(site, kLogErr,
                         L"COMMAND::RESULT_ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE");
            return {RESULT_ERROR_XML_ENTERED_NODE_DOESNT_HAVE_ANY_VALUE, {}};
        default:
            return Unsupported(site, type);
    }
}

// The checks both directions make first, in their order.
RESULT CheckRequest(const camera::CameraShared& shared, const core::LogSite& site, const char* name,
                    bool nameMissing, const wchar_t* missingText) {
    if (!shared.nodeMap) {
        RY_LOG_EVENT(site, kLogErr, L"pNodeMap is invalid");
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    }
    if (nameMissing) {
        RY_LOG_EVENT(site, kLogErr, L"%ls", missingText);
        return RESULT_ERROR_INVALID_PARAMETER;
    }
    if (name[0] == '\0') {
        RY_LOG_EVENT(site, kLogErr, L"cpCommand is empty");
        return RESULT_ERROR_INVALID_PARAMETER;
    }
    if (shared.nodeMap->map._GetNode(name) == nullptr) {
        RY_LOG_EVENT(site, kLogErr, L"pNode is invalid. cpCommand(%ls)", core::Widen(name).c_str());
        return RESULT_ERROR_XML_NOT_EXIST_NODE;
    }
    return RESULT_SUCCESS;
}

struct Write {
    const core::LogSite& site;
    const camera::CameraShared& shared;
    const char* name;
    const char* text;
    bool clamp;

    RESULT NotWritable(const wchar_t* kind) const {
        RY_LOG_EVENT(site, kLogErr, L"%ls::bWritable is FALSE", kind);
        return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
    }

    RESULT MissingText(const wchar_t* kind) const {
        RY_LOG_EVENT(site, kLogErr, L"%ls::cpArg is invalid", kind);
        return RESULT_ERROR_INVALID_PARAMETER;
    }

    RESULT Integer(RyGenApi::IInteger& node, const wchar_t* kind) const {
        if (text == nullptr)
            return MissingText(kind);
        int64_t value = std::strtoll(text, nullptr, 10);
        if (clamp) {
            if (value < node.GetMin())
                value = node.GetMin();
            if (node.GetMax() >= 1 && value > node.GetMax())
                value = node.GetMax();
        }
        if (std::string_view(name) == "Width" && value % 4 != 0) {
            RY_LOG_EVENT(site, kLogErr, L"INTEGER::nArg(%lld) %% 4", static_cast<long long>(value));
            return RESULT_ERROR_RYCAMERA_IMAGE_NOT4DIVIDE;
        }
        // The transport layer's own heartbeat follows the device's time-out.
        if (std::string_view(name) == "GevHeartbeatTimeout")
            camera::TL().DevSetHeartBeatTimeout(shared.device, static_cast<uint32_t>(value));
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.SetValue(value, clamp);
        RY_LOG_EVENT(site, kLogDebug, L"INTEGER::cpCommand(%ls)<-%lld", core::Widen(name).c_str(),
                     static_cast<long long>(value));
        return RESULT_SUCCESS;
    }

    RESULT Float(RyGenApi::IFloat& node, const wchar_t* kind) const {
        if (text == nullptr)
            return MissingText(kind);
        const double value = std::atof(text);
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.SetValue(value, true);
        RY_LOG_EVENT(site, kLogDebug, L"FLOAT::cpCommand<-%f", value);
        return RESULT_SUCCESS;
    }

    RESULT Enumeration(RyGenApi::IEnumeration& node, const wchar_t* kind) const {
        if (text == nullptr)
            return MissingText(kind);
        RyGenApi::IEnumEntry* entry = node.GetEntryByName(text);
        if (entry == nullptr) {
            RY_LOG_EVENT(site, kLogErr, L"ENUMERATION:: pEnumEntry is invalid. cpArg(%ls)",
                         core::Widen(text).c_str());
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.SetIntValue(entry->GetValue(), true);
        return RESULT_SUCCESS;
    }

    RESULT Boolean(RyGenApi::IBoolean& node, const wchar_t* kind) const {
        const int value = text != nullptr ? std::atoi(text) : -1;
        if (value != 0 && value != 1) {
            RY_LOG_EVENT(site, kLogErr, L"BOOLEAN:: nArg(%d) is invalid", value);
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.SetValue(value == 1, true);
        RY_LOG_EVENT(site, kLogDebug, L"BOOLEAN:: chCommand<-%d", value);
        return RESULT_SUCCESS;
    }

    // Strings and registers alike take the caller's text as it is.
    RESULT Text(RyGenApi::IValue& node, const wchar_t* kind) const {
        if (text == nullptr)
            return MissingText(kind);
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.FromString(text, true);
        RY_LOG_EVENT(site, kLogDebug, L"%ls:: chCommand<-%ls", kind, core::Widen(text).c_str());
        return RESULT_SUCCESS;
    }

    RESULT Command(RyGenApi::ICommand& node, const wchar_t* kind) const {
        if (!RyGenApi::IsWritable(node.GetAccessMode()))
            return NotWritable(kind);
        node.Execute(true);
        return RESULT_SUCCESS;
    }

    RESULT To(RyGenApi::INode& node) const;
};

// A writer of one node kind, reached with the node as its own interface.
using Writer = RESULT (*)(const Write&, RyGenApi::INode&, const wchar_t* kind);

template <class Interface, RESULT (Write::*Method)(Interface&, const wchar_t*) const>
RESULT WriteAs(const Write& write, RyGenApi::INode& node, const wchar_t* kind) {
    return (write.*Method)(dynamic_cast<Interface&>(node), kind);
}

struct Kind {
    EInterfaceType type;
    const wchar_t* word;
    Writer write;
};

// Every node kind a feature can have: its log word and how a text is written to it.
constexpr Kind kKinds[] = {
    {RyGenApi::intfIInteger, L"INTEGER", WriteAs<RyGenApi::IInteger, &Write::Integer>},
    {RyGenApi::intfIFloat, L"FLOAT", WriteAs<RyGenApi::IFloat, &Write::Float>},
    {RyGenApi::intfIEnumeration, L"ENUMERATION",
     WriteAs<RyGenApi::IEnumeration, &Write::Enumeration>},
    {RyGenApi::intfIBoolean, L"BOOLEAN", WriteAs<RyGenApi::IBoolean, &Write::Boolean>},
    {RyGenApi::intfICommand, L"COMMAND", WriteAs<RyGenApi::ICommand, &Write::Command>},
    {RyGenApi::intfIString, L"STRING", WriteAs<RyGenApi::IValue, &Write::Text>},
    {RyGenApi::intfIRegister, L"REGISTER", WriteAs<RyGenApi::IValue, &Write::Text>},
};

// Other kinds (categories, ports, enumeration entries) have a word but no writer.
constexpr Kind kOtherKind{RyGenApi::intfIBase, L"NODE", nullptr};

const Kind& KindOf(EInterfaceType type) {
    for (const Kind& kind : kKinds) {
        if (kind.type == type)
            return kind;
    }
    return kOtherKind;
}

const wchar_t* KindWord(EInterfaceType type) {
    return KindOf(type).word;
}

RESULT Write::To(RyGenApi::INode& node) const {
    const Kind& kind = KindOf(node.GetPrincipalInterfaceType());
    if (kind.write == nullptr) {
        RY_LOG_EVENT(site, kLogErr, L"%ls::RESULT_ERROR_XML_UNSUPPORTED_COMMAND", kind.word);
        return RESULT_ERROR_XML_UNSUPPORTED_COMMAND;
    }
    return kind.write(*this, node, kind.word);
}

}  // namespace

RESULT RyCamera::SetCustomCommand(const char* cpCommand, const char* cpArg, uint64_t /*size*/,
                                  int /*flag1*/, int flag2) {
    RY_CAMERA_SITE(SetCustomCommand);
    return RY_GUARDED(kSite, [&] {
        RESULT result =
            CheckRequest(*m_Shared, kSite, cpCommand, cpCommand == nullptr, L"cpCommand is NULL");
        if (result != RESULT_SUCCESS)
            return result;
        RyGenApi::INode& node = *m_Shared->nodeMap->map._GetNode(cpCommand);
        if (node.GetAccessMode() == RyGenApi::RO) {
            RY_LOG_EVENT(kSite, kLogErr, L"pNode->GetAccessMode() == RO");
            return RESULT_ERROR_RYCAMERA_READ_ONLY;
        }
        return Write{kSite, *m_Shared, cpCommand, cpArg, flag2 != 0}.To(node);
    });
}

RESULT RyCamera::GetCustomCommand(const char* cpCommand, char* cpArg, uint64_t* cbpArgSize,
                                  int32_t selector) {
    RY_CAMERA_SITE(GetCustomCommand);
    return RY_GUARDED(kSite, [&] {
        const bool missing = cpCommand == nullptr || cbpArgSize == nullptr;
        if (missing && m_Shared->nodeMap) {
            RY_LOG_EVENT(kSite, kLogErr, L"cpCommand(%X) or cbpArgSize(%X) is invalid",
                         static_cast<unsigned>(reinterpret_cast<uintptr_t>(cpCommand)),
                         static_cast<unsigned>(reinterpret_cast<uintptr_t>(cbpArgSize)));
            return RESULT_ERROR_INVALID_PARAMETER;
        }
        RESULT result = CheckRequest(*m_Shared, kSite, cpCommand, missing, L"");
        if (result != RESULT_SUCCESS)
            return result;
        RyGenApi::INode& node = *m_Shared->nodeMap->map._GetNode(cpCommand);
        const Answer answer = ReadAnswer(kSite, node, selector);
        if (answer.result == RESULT_ERROR_XML_UNSUPPORTED_COMMAND &&
            node.GetPrincipalInterfaceType() == RyGenApi::intfIInteger) {
            *cbpArgSize = 0xFFFFFF;
        }
        if (answer.result != RESULT_SUCCESS)
            return answer.result;
        const uint64_t needed = answer.text.size() + 1;
        const bool fits = cpArg != nullptr && !answer.text.empty() && needed <= *cbpArgSize;
        *cbpArgSize = needed;
        RY_LOG_EVENT(kSite, kLogDebug, L"%ls::GET_CUSTOM_COMMAND(%d) : cpArg(%ls) cbpArgSize(%llu)",
                     KindWord(node.GetPrincipalInterfaceType()), selector,
                     core::Widen(answer.text).c_str(), static_cast<unsigned long long>(needed));
        if (!fits)
            return RESULT_ERROR_INVALID_PARAMETER;
        std::memcpy(cpArg, answer.text.c_str(), needed);
        return RESULT_SUCCESS;
    });
}

RESULT RyCamera::InvalidateNodes() {
    RY_CAMERA_SITE(InvalidateNodes);
    return RY_GUARDED(kSite, [&] {
        if (!m_Shared->nodeMap)
            return RESULT_ERROR_XML_NODE_ACCESS_FAILED;
        m_Shared->nodeMap->map._InvalidateNodes();
        return RESULT_SUCCESS;
    });
}

}  // namespace RYSDK

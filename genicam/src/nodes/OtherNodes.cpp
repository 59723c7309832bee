#include "nodes/OtherNodes.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

// ---- Port ------------------------------------------------------------------------------

bool PortNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag == "SwapEndianess") {
        swapEndianess_ = ParseYesNo(child.text);
        return true;
    }
    return tag == "ChunkID" || tag == "pChunkID" || tag == "CacheChunkData";
}

void PortNode::Read(void* buffer, int64_t address, int64_t length) {
    const auto lock = this->Lock();
    if (connected_ == nullptr) {
        throw AccessException(std::string(name_), "port is not connected");
    }
    if (buffer == nullptr || length < 0) {
        throw InvalidArgumentException(std::string(name_), "bad buffer for a port read");
    }
    connected_->Read(buffer, address, length);
    if (swapEndianess_) {
        auto* bytes = static_cast<uint8_t*>(buffer);
        std::reverse(bytes, bytes + length);
    }
}

void PortNode::Write(const void* buffer, int64_t address, int64_t length) {
    const auto lock = this->Lock();
    if (connected_ == nullptr) {
        throw AccessException(std::string(name_), "port is not connected");
    }
    if (buffer == nullptr || length < 0) {
        throw InvalidArgumentException(std::string(name_), "bad buffer for a port write");
    }
    if (!swapEndianess_) {
        connected_->Write(buffer, address, length);
        return;
    }
    const auto* bytes = static_cast<const uint8_t*>(buffer);
    std::vector<uint8_t> swapped(bytes, bytes + length);
    std::reverse(swapped.begin(), swapped.end());
    connected_->Write(swapped.data(), address, length);
}

// ---- Category --------------------------------------------------------------------------

bool CategoryNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag != "pFeature") {
        return false;
    }
    features_.push_back(Ref{child.text});
    return true;
}

void CategoryNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    for (Ref& ref : features_) {
        visit(ref, RefKind::Feature);
    }
}

void CategoryNode::FromString(const std::string&, bool) {
    const auto lock = this->Lock();
    throw AccessException(std::string(name_), "a category has no value to set");
}

void CategoryNode::GetFeatures(FeatureList_t& features) {
    const auto lock = this->Lock();
    features.clear();
    for (const Ref& ref : features_) {
        if (auto* value = dynamic_cast<IValue*>(ref.node)) {
            features.push_back(value);
        }
    }
}

// ---- EnumEntry -------------------------------------------------------------------------

bool EnumEntryNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    if (tag == "Value") {
        value_ = loader.Integer(child, name_);
    } else if (tag == "NumericValue") {
        numeric_ = loader.Real(child, name_);
    } else if (tag == "Symbolic") {
        if (!child.text.empty()) {
            symbolic_ = child.text;
        }
    } else if (tag == "IsSelfClearing") {
        selfClearing_ = ParseYesNo(child.text);
    } else {
        return false;
    }
    return true;
}

void EnumEntryNode::FromString(const std::string&, bool) {
    const auto lock = this->Lock();
    throw AccessException(std::string(name_), "an enumeration entry is read-only");
}

// ---- Enumeration -----------------------------------------------------------------------

bool EnumerationNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    if (tag == "EnumEntry") {
        if (auto* entry = dynamic_cast<EnumEntryNode*>(loader.CreateEnumEntry(child, name_))) {
            entries_.push_back(entry);
        }
    } else if (tag == "pEnumEntry") {
        entryRefs_.push_back(Ref{child.text});
    } else if (tag == "Value") {
        constant_ = loader.Integer(child, name_);
    } else if (tag == "pValue") {
        value_.name = child.text;
    } else if (tag == "pSelected") {
        selected_.push_back(Ref{child.text});
    } else {
        return false;
    }
    return true;
}

void EnumerationNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!value_.name.empty()) {
        visit(value_, RefKind::Value);
    }
    for (Ref& ref : entryRefs_) {
        visit(ref, RefKind::Invalidating);
    }
    for (Ref& ref : selected_) {
        visit(ref, RefKind::Selecting);
    }
}

void EnumerationNode::Finish(Loader&) {
    for (const Ref& ref : entryRefs_) {
        auto* entry = dynamic_cast<EnumEntryNode*>(ref.node);
        if (entry == nullptr) {
            throw RuntimeException(std::string(name_), "pEnumEntry '" + std::string(ref.name) +
                                                           "' is not an EnumEntry");
        }
        entries_.push_back(entry);
    }
    for (EnumEntryNode* entry : entries_) {
        AddChild(entry);
        hasNumericValues_ = hasNumericValues_ || entry->HasNumericValue();
    }
    if (!value_.name.empty() && constant_) {
        map_.Warn("node " + std::string(name_) + ": both Value and pValue, using pValue");
    }
}

EAccessMode EnumerationNode::NaturalAccessMode() const {
    if (value_) {
        return value_.node->EffectiveAccessMode();
    }
    return constant_ ? RW : NI;
}

EnumEntryNode* EnumerationNode::FindEntry(int64_t value) const {
    for (EnumEntryNode* entry : entries_) {
        if (entry->GetValue() == value) {
            return entry;
        }
    }
    return nullptr;
}

EnumEntryNode* EnumerationNode::FindSymbolic(std::string_view symbolic) const {
    for (EnumEntryNode* entry : entries_) {
        if (entry->Symbolic() == symbolic) {
            return entry;
        }
    }
    return nullptr;
}

int64_t EnumerationNode::GetIntValue(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    RequireReadable();
    const int64_t value =
        value_ ? value_.node->ReadNumber(ignoreCache).AsInteger(value_.name) : *constant_;
    if (verify && FindEntry(value) == nullptr) {
        throw OutOfRangeException(std::string(name_), "value " + std::to_string(value) +
                                                          " is not an entry of the enumeration");
    }
    return value;
}

void EnumerationNode::SetIntValue(int64_t value, bool verify) {
    const auto lock = this->Lock();
    RequireWritable();
    if (verify) {
        const EnumEntryNode* entry = FindEntry(value);
        if (entry == nullptr) {
            throw OutOfRangeException(
                std::string(name_),
                "value " + std::to_string(value) + " is not an entry of the enumeration");
        }
        if (!IsAvailable(entry->EffectiveAccessMode())) {
            throw AccessException(std::string(name_),
                                  "entry " + entry->GetSymbolic() + " is not available");
        }
    }
    if (value_) {
        value_.node->WriteNumber(Number::Integer(value), verify);
    } else {
        constant_ = value;
        InvalidateWithDependents();
    }
    ReportDeviceError();
}

IEnumEntry* EnumerationNode::GetCurrentEntry(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    const int64_t value = GetIntValue(verify, ignoreCache);
    EnumEntryNode* entry = FindEntry(value);
    if (entry == nullptr) {
        throw OutOfRangeException(std::string(name_), "value " + std::to_string(value) +
                                                          " is not an entry of the enumeration");
    }
    return entry;
}

std::string EnumerationNode::ToString(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    return GetCurrentEntry(verify, ignoreCache)->GetSymbolic();
}

void EnumerationNode::FromString(const std::string& symbolic, bool verify) {
    const auto lock = this->Lock();
    const EnumEntryNode* entry = FindSymbolic(xml::Trim(symbolic));
    if (entry == nullptr) {
        throw InvalidArgumentException(std::string(name_),
                                       "'" + symbolic + "' is not an entry of the enumeration");
    }
    if (!IsAvailable(entry->EffectiveAccessMode())) {
        throw AccessException(std::string(name_), "entry " + symbolic + " is not available");
    }
    SetIntValue(entry->Value(), verify);
}

void EnumerationNode::GetSymbolics(StringList_t& symbolics) {
    const auto lock = this->Lock();
    symbolics.clear();
    for (EnumEntryNode* entry : entries_) {
        if (IsAvailable(entry->EffectiveAccessMode())) {
            symbolics.push_back(entry->GetSymbolic());
        }
    }
}

void EnumerationNode::GetEntries(NodeList_t& entries) {
    const auto lock = this->Lock();
    entries.assign(entries_.begin(), entries_.end());
}

IEnumEntry* EnumerationNode::GetEntryByName(const std::string& symbolic) {
    const auto lock = this->Lock();
    return FindSymbolic(symbolic);
}

IEnumEntry* EnumerationNode::GetEntry(int64_t value) {
    const auto lock = this->Lock();
    return FindEntry(value);
}

bool EnumerationNode::EntryValue(std::string_view symbolic, int64_t& value) {
    const EnumEntryNode* entry = FindSymbolic(symbolic);
    if (entry == nullptr) {
        return false;
    }
    value = entry->Value();
    return true;
}

Number EnumerationNode::ReadNumber(bool ignoreCache) {
    const int64_t value = GetIntValue(false, ignoreCache);
    if (hasNumericValues_) {
        if (EnumEntryNode* entry = FindEntry(value); entry && entry->HasNumericValue()) {
            return Number::Real(entry->GetNumericValue());
        }
    }
    return Number::Integer(value);
}

// A number written through a reference selects the available entry whose numeric value is
// nearest; entries without NumericValue count with their Value.
void EnumerationNode::WriteNumber(Number value, bool verify) {
    EnumEntryNode* nearest = nullptr;
    double bestDistance = std::numeric_limits<double>::infinity();
    for (EnumEntryNode* entry : entries_) {
        const double distance = std::fabs(entry->GetNumericValue() - value.AsReal());
        if (IsAvailable(entry->EffectiveAccessMode()) && distance < bestDistance) {
            nearest = entry;
            bestDistance = distance;
        }
    }
    if (nearest == nullptr) {
        throw AccessException(std::string(name_), "no entry is available");
    }
    SetIntValue(nearest->Value(), verify);
}

Number EnumerationNode::MinNumber() {
    return Number::Integer(std::numeric_limits<int64_t>::min());
}
Number EnumerationNode::MaxNumber() {
    return Number::Integer(std::numeric_limits<int64_t>::max());
}

// ---- Boolean ---------------------------------------------------------------------------

bool BooleanNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    const std::string_view text = child.text;
    if (tag == "Value") {
        if (text == "true" || text == "false") {
            constant_ = text == "true" ? 1 : 0;
        } else {
            constant_ = loader.Integer(child, name_) != 0 ? 1 : 0;
        }
    } else if (tag == "pValue") {
        value_.name = text;
    } else if (tag == "OnValue") {
        onValue_ = loader.Integer(child, name_);
    } else if (tag == "OffValue") {
        offValue_ = loader.Integer(child, name_);
    } else if (tag == "pSelected") {
        selected_.push_back(Ref{text});
    } else {
        return false;
    }
    return true;
}

void BooleanNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!value_.name.empty()) {
        visit(value_, RefKind::Value);
    }
    for (Ref& ref : selected_) {
        visit(ref, RefKind::Selecting);
    }
}

EAccessMode BooleanNode::NaturalAccessMode() const {
    if (value_) {
        return value_.node->EffectiveAccessMode();
    }
    return constant_ ? RW : NI;
}

bool BooleanNode::GetValue(bool, bool ignoreCache) {
    const auto lock = this->Lock();
    RequireReadable();
    if (!value_) {
        return *constant_ != 0;
    }
    const int64_t raw = value_.node->ReadNumber(ignoreCache).AsInteger(value_.name);
    if (raw == onValue_) {
        return true;
    }
    if (raw == offValue_) {
        return false;
    }
    throw RuntimeException(std::string(name_),
                           "value " + std::to_string(raw) + " is neither the on value " +
                               std::to_string(onValue_) + " nor the off value " +
                               std::to_string(offValue_));
}

void BooleanNode::SetValue(bool value, bool verify) {
    const auto lock = this->Lock();
    RequireWritable();
    if (value_) {
        value_.node->WriteNumber(Number::Integer(value ? onValue_ : offValue_), verify);
    } else {
        constant_ = value ? 1 : 0;
        InvalidateWithDependents();
    }
    ReportDeviceError();
}

Number BooleanNode::ReadNumber(bool ignoreCache) {
    return Number::Integer(GetValue(false, ignoreCache) ? 1 : 0);
}

void BooleanNode::WriteNumber(Number value, bool verify) {
    SetValue(value.AsReal() != 0.0, verify);
}

std::string BooleanNode::ToString(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    return GetValue(verify, ignoreCache) ? "1" : "0";
}

void BooleanNode::FromString(const std::string& text, bool verify) {
    const auto lock = this->Lock();
    const std::string_view value = xml::Trim(text);
    if (value == "1" || value == "true" || value == "True") {
        SetValue(true, verify);
    } else if (value == "0" || value == "false" || value == "False") {
        SetValue(false, verify);
    } else {
        throw InvalidArgumentException(std::string(name_), "'" + text + "' is not a boolean");
    }
}

// ---- Command ---------------------------------------------------------------------------

bool CommandNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    if (tag == "Value") {
        constant_ = loader.Integer(child, name_);
    } else if (tag == "pValue") {
        value_.name = child.text;
    } else if (tag == "CommandValue") {
        commandValue_ = loader.Integer(child, name_);
    } else if (tag == "pCommandValue") {
        commandValueRef_.name = child.text;
    } else {
        return false;
    }
    return true;
}

void CommandNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!value_.name.empty()) {
        visit(value_, RefKind::Value);
    }
    if (!commandValueRef_.name.empty()) {
        visit(commandValueRef_, RefKind::Reading);
    }
}

EAccessMode CommandNode::NaturalAccessMode() const {
    if (value_) {
        return value_.node->EffectiveAccessMode();
    }
    return constant_ ? RW : NI;
}

int64_t CommandNode::CommandValue() const {
    return commandValueRef_
               ? commandValueRef_.node->ReadNumber(true).AsInteger(commandValueRef_.name)
               : commandValue_;
}

void CommandNode::Execute(bool verify) {
    const auto lock = this->Lock();
    RequireWritable();
    const int64_t command = CommandValue();
    if (value_) {
        value_.node->WriteNumber(Number::Integer(command), verify);
    } else {
        constant_ = command;
    }
    InvalidateWithDependents();
    ReportDeviceError();
}

bool CommandNode::IsDone(bool) {
    const auto lock = this->Lock();
    if (EffectiveAccessMode() == NI) {
        throw AccessException(std::string(name_), "command is not implemented");
    }
    if (!value_ || !IsReadable(value_.node->EffectiveAccessMode())) {
        return true;
    }
    // The device clears the register once the command has finished.
    return value_.node->ReadNumber(true).AsInteger(value_.name) != CommandValue();
}

std::string CommandNode::ToString(bool, bool) {
    const auto lock = this->Lock();
    return IsDone(true) ? "1" : "0";
}

void CommandNode::FromString(const std::string& text, bool verify) {
    const auto lock = this->Lock();
    const std::string_view value = xml::Trim(text);
    if (value == "1" || value == "true" || value == "Execute") {
        Execute(verify);
    } else if (value != "0" && value != "false") {
        throw InvalidArgumentException(std::string(name_), "'" + text + "' is not a command value");
    }
}

// ---- String ----------------------------------------------------------------------------

bool StringNode::ParseChild(std::string_view tag, const xml::Element& child, Loader&) {
    if (tag == "Value") {
        value_ = std::string(child.text);
        hasConstant_ = true;
    } else if (tag == "pValue") {
        target_.name = child.text;
    } else {
        return false;
    }
    return true;
}

void StringNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!target_.name.empty()) {
        visit(target_, RefKind::Value);
    }
}

void StringNode::Finish(Loader&) {
    if (target_) {
        targetString_ = dynamic_cast<IString*>(target_.node);
        if (targetString_ == nullptr) {
            throw RuntimeException(std::string(name_), "pValue '" + std::string(target_.name) +
                                                           "' is not a string node");
        }
    }
}

EAccessMode StringNode::NaturalAccessMode() const {
    if (target_) {
        return target_.node->EffectiveAccessMode();
    }
    return hasConstant_ ? RW : NI;
}

std::string StringNode::GetValue(bool verify, bool ignoreCache) {
    const auto lock = this->Lock();
    RequireReadable();
    return targetString_ ? targetString_->GetValue(verify, ignoreCache) : value_;
}

void StringNode::SetValue(const std::string& value, bool verify) {
    const auto lock = this->Lock();
    RequireWritable();
    if (targetString_) {
        targetString_->SetValue(value, verify);
    } else {
        value_ = value;
        InvalidateWithDependents();
    }
    ReportDeviceError();
}

int64_t StringNode::GetMaxLength() {
    const auto lock = this->Lock();
    return targetString_ ? targetString_->GetMaxLength() : std::numeric_limits<int64_t>::max();
}

}  // namespace RyGenApi::detail

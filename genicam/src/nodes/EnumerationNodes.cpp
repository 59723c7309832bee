#include "nodes/EnumerationNodes.h"

#include <cmath>
#include <limits>

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

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

}  // namespace RyGenApi::detail

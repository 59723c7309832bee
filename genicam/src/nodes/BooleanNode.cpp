#include "nodes/BooleanNode.h"

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

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

}  // namespace RyGenApi::detail

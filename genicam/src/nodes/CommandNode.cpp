#include "nodes/CommandNode.h"

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

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

}  // namespace RyGenApi::detail

#include "nodes/NumericNodes.h"

#include <limits>

#include "loader/Loader.h"

namespace RyGenApi::detail {

Number Bound::Get() const {
    return ref ? ref.node->ReadNumber(false) : constant;
}

NumericNode::NumericNode(NodeMapImpl& map, std::string_view name, EInterfaceType principal,
                         bool isReal)
    : Node(map, name, principal), isReal_(isReal) {}

Number NumericNode::ParseNumberText(const xml::Element& child, Loader& loader) const {
    return isReal_ ? Number::Real(loader.Real(child, name_))
                   : Number::Integer(loader.Integer(child, name_));
}

bool NumericNode::ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    const std::string_view text = child.text;
    if (tag == "Value") {
        plain_.constant = ParseNumberText(child, loader);
    } else if (tag == "pValue") {
        plain_.ref.name = text;
    } else if (tag == "pValueCopy") {
        copies_.push_back(Ref{text});
    } else if (tag == "pIndex") {
        index_.name = text;
        indexed_ = true;
    } else if (tag == "ValueIndexed" || tag == "pValueIndexed") {
        Row row;
        row.index = loader.IntegerAttribute(child, "Index", name_);
        if (tag == "ValueIndexed") {
            row.constant = ParseNumberText(child, loader);
        } else {
            row.ref.name = text;
        }
        rows_.push_back(row);
    } else if (tag == "ValueDefault") {
        default_.constant = ParseNumberText(child, loader);
    } else if (tag == "pValueDefault") {
        default_.ref.name = text;
    } else if (tag == "Min" || tag == "Max" || tag == "Inc") {
        Bound& bound = tag == "Min" ? min_ : (tag == "Max" ? max_ : inc_);
        bound.present = true;
        bound.constant = ParseNumberText(child, loader);
    } else if (tag == "pMin" || tag == "pMax" || tag == "pInc") {
        Bound& bound = tag == "pMin" ? min_ : (tag == "pMax" ? max_ : inc_);
        bound.present = true;
        bound.ref.name = text;
    } else if (tag == "pSelected") {
        selected_.push_back(Ref{text});
    } else {
        return presentation_.Parse(tag, child, loader, name_);
    }
    return true;
}

void NumericNode::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    Node::VisitReferences(visit);
    if (!plain_.ref.name.empty()) {
        visit(plain_.ref, RefKind::Value);
    }
    for (Ref& ref : copies_) {
        visit(ref, RefKind::Value);
    }
    if (indexed_) {
        visit(index_, RefKind::Reading);
    }
    for (Row& row : rows_) {
        if (!row.ref.name.empty()) {
            visit(row.ref, RefKind::Value);
        }
    }
    if (!default_.ref.name.empty()) {
        visit(default_.ref, RefKind::Value);
    }
    for (Bound* bound : {&min_, &max_, &inc_}) {
        if (!bound->ref.name.empty()) {
            visit(bound->ref, RefKind::Reading);
        }
    }
    for (Ref& ref : selected_) {
        visit(ref, RefKind::Selecting);
    }
}

NumericNode::Row& NumericNode::CurrentSource() const {
    if (!indexed_) {
        return plain_;
    }
    const int64_t index = index_.node->ReadNumber(false).AsInteger(index_.name);
    for (Row& row : rows_) {
        if (row.index == index) {
            return row;
        }
    }
    return default_;
}

Node* NumericNode::BoundSource() const {
    const Row& source = indexed_ ? CurrentSource() : plain_;
    return source.ref ? source.ref.node : nullptr;
}

Number NumericNode::Convert(Number value) const {
    return isReal_ ? Number::Real(value.AsReal()) : Number::Integer(value.AsInteger(name_));
}

EAccessMode NumericNode::NaturalAccessMode() const {
    const Row* row = nullptr;
    try {
        row = &CurrentSource();
    } catch (const GenericException&) {
        return NA;
    }
    if (row->ref) {
        return row->ref.node->EffectiveAccessMode();
    }
    if (row->constant) {
        return RW;
    }
    return NI;  // an indexed node without a matching row or default
}

Number NumericNode::ReadNumber(bool ignoreCache) {
    RequireReadable();
    Row& row = CurrentSource();
    return Convert(row.ref ? row.ref.node->ReadNumber(ignoreCache) : *row.constant);
}

void NumericNode::WriteNumber(Number value, bool verify) {
    value = isReal_ ? Number::Real(value.AsReal()) : Number::Integer(IntegerForWrite(value));
    PrepareWrite(value, verify);
    Row& row = CurrentSource();
    if (row.ref) {
        row.ref.node->WriteNumber(value, verify);
        for (Ref& copy : copies_) {
            copy.node->WriteNumber(value, verify);
        }
        return;
    }
    row.constant = value;
    InvalidateWithDependents();
}

Number NumericNode::MinNumber() {
    if (min_.present) {
        return Convert(min_.Get());
    }
    if (Node* source = BoundSource()) {
        return Convert(source->MinNumber());
    }
    return isReal_ ? Number::Real(std::numeric_limits<double>::lowest())
                   : Number::Integer(std::numeric_limits<int64_t>::min());
}

Number NumericNode::MaxNumber() {
    if (max_.present) {
        return Convert(max_.Get());
    }
    if (Node* source = BoundSource()) {
        return Convert(source->MaxNumber());
    }
    return isReal_ ? Number::Real(std::numeric_limits<double>::max())
                   : Number::Integer(std::numeric_limits<int64_t>::max());
}

bool NumericNode::HasIncrement() {
    if (!isReal_) {
        return true;
    }
    Node* source = inc_.present ? nullptr : BoundSource();
    return inc_.present || (source != nullptr && source->HasIncrement() &&
                            source->GetPrincipalInterfaceType() == intfIFloat);
}

Number NumericNode::IncNumber() {
    Number increment = Number::Integer(1);
    if (inc_.present) {
        increment = inc_.Get();
    } else if (Node* source = BoundSource()) {
        increment = source->IncNumber();
    }
    increment = Convert(increment);
    if (increment.AsReal() <= 0) {
        throw LogicalErrorException(std::string(name_), "increment must be positive");
    }
    return increment;
}

ERepresentation NumericNode::RepresentationValue() {
    if (presentation_.representation) {
        return *presentation_.representation;
    }
    Node* source = BoundSource();
    return source != nullptr ? source->RepresentationValue() : PureNumber;
}

std::string NumericNode::UnitValue() {
    Node* source = presentation_.unit.empty() ? BoundSource() : nullptr;
    return source != nullptr ? source->UnitValue() : std::string(presentation_.unit);
}

}  // namespace RyGenApi::detail

#include "nodes/Node.h"

#include <algorithm>

#include "loader/Loader.h"
#include "nodes/NodeMapImpl.h"

namespace RyGenApi::detail {

namespace {
// Bounds the native recursion of access-mode evaluation; real files nest a handful of levels.
constexpr int kMaxAccessDepth = 400;
}  // namespace

Node::Node(NodeMapImpl& map, std::string_view name, EInterfaceType principal)
    : map_(map), name_(name), principal_(principal) {}

Node::~Node() = default;

std::string Node::GetName(bool fullQualified) const {
    return fullQualified ? map_.GetDeviceName() + "::" + std::string(name_) : std::string(name_);
}

std::string Node::GetDisplayName() const {
    return std::string(displayName_.empty() ? name_ : displayName_);
}

EVisibility Node::GetVisibility() const {
    return Combine(visibility_, imposedVisibility_);
}

ECachingMode Node::GetCachingMode() const {
    return IsVolatile() ? NoCache : WriteThrough;
}

void Node::GetChildren(NodeList_t& children) const {
    children.assign(children_.begin(), children_.end());
}

void Node::GetParents(NodeList_t& parents) const {
    parents.assign(dependents_.begin(), dependents_.end());
}

void Node::GetPropertyNames(StringList_t& names) const {
    names.clear();
    for (const Property& property : properties_) {
        const std::string name(property.name);
        if (std::find(names.begin(), names.end(), name) == names.end()) {
            names.push_back(name);
        }
    }
}

bool Node::GetProperty(const std::string& name, std::string& value, std::string& attribute) const {
    bool found = false;
    for (const Property& property : properties_) {
        if (property.name != name) {
            continue;
        }
        // Repeated items (several pInvalidator, pFeature ...) are joined with tabs.
        value = found ? value + "\t" + std::string(property.value) : std::string(property.value);
        attribute = std::string(property.attribute);
        found = true;
    }
    return found;
}

void Node::InvalidateNode() {
    const auto lock = this->Lock();
    InvalidateWithDependents();
}

void Node::ImposeAccessMode(EAccessMode mode) {
    const auto lock = this->Lock();
    runtimeImposedAccess_ = mode;
    InvalidateWithDependents();
}

void Node::ImposeVisibility(EVisibility visibility) {
    imposedVisibility_ = visibility;
}

INodeMap* Node::GetNodeMap() const {
    return &map_;
}

std::unique_lock<std::recursive_mutex> Node::Lock() const {
    return std::unique_lock<std::recursive_mutex>(map_.Mutex());
}

INode::CallbackHandle Node::RegisterCallback(Callback callback) {
    const auto lock = this->Lock();
    const CallbackHandle handle = nextCallback_++;
    callbacks_.emplace(handle, std::move(callback));
    return handle;
}

bool Node::DeregisterCallback(CallbackHandle handle) {
    const auto lock = this->Lock();
    return callbacks_.erase(handle) != 0;
}

void Node::FireCallbacks() {
    for (auto& [handle, callback] : callbacks_) {
        callback(this);
    }
}

// ---- access mode ---------------------------------------------------------------------

EAccessMode Node::GetAccessMode() const {
    const auto lock = this->Lock();
    return EffectiveAccessMode();
}

EAccessMode Node::EffectiveAccessMode() const {
    if (cachedAccess_ != _UndefinedAccesMode && accessEpoch_ == map_.CacheEpoch()) {
        return cachedAccess_;
    }
    if (accessBusy_) {
        return RW;  // a cycle through the access-mode inputs: the re-entered node counts as RW
    }
    int& depth = map_.AccessDepth();
    if (depth >= kMaxAccessDepth) {
        throw RuntimeException(std::string(name_), "access-mode inputs nested too deeply");
    }
    accessBusy_ = true;
    ++depth;
    EAccessMode mode;
    try {
        mode = ComputeAccessMode();
    } catch (...) {
        accessBusy_ = false;
        --depth;
        throw;
    }
    accessBusy_ = false;
    --depth;
    if (!IsVolatile()) {
        cachedAccess_ = mode;
        accessEpoch_ = map_.CacheEpoch();
    }
    return mode;
}

bool Node::ReadFlag(const Ref& ref, bool whenUnreadable) const {
    try {
        if (!IsReadable(ref.node->EffectiveAccessMode())) {
            return whenUnreadable;
        }
        return ref.node->ReadNumber(false).AsInteger(ref.name) != 0;
    } catch (const GenericException&) {
        return whenUnreadable;
    }
}

EAccessMode Node::ComputeAccessMode() const {
    if (isImplemented_ && !ReadFlag(isImplemented_, false)) {
        return NI;
    }
    if (isAvailable_ && !ReadFlag(isAvailable_, false)) {
        return NA;
    }
    EAccessMode mode = Combine(NaturalAccessMode(), imposedAccess_);
    if (isLocked_ && ReadFlag(isLocked_, false)) {
        if (mode == RW) {
            mode = RO;
        } else if (mode == WO) {
            mode = NA;
        }
    }
    return Combine(mode, runtimeImposedAccess_);
}

void Node::RequireReadable() const {
    const EAccessMode mode = EffectiveAccessMode();
    if (!IsReadable(mode)) {
        throw AccessException(
            std::string(name_),
            std::string("node is not readable (access mode ") + AccessModeName(mode) + ")");
    }
}

void Node::RequireWritable() const {
    const EAccessMode mode = EffectiveAccessMode();
    if (!IsWritable(mode)) {
        throw AccessException(
            std::string(name_),
            std::string("node is not writable (access mode ") + AccessModeName(mode) + ")");
    }
}

void Node::ThrowLogical(const std::string& message) const {
    throw LogicalErrorException(std::string(name_), message);
}

// ---- numeric protocol defaults -------------------------------------------------------

Number Node::ReadNumber(bool) {
    ThrowLogical("node has no numeric value");
}
void Node::WriteNumber(Number, bool) {
    ThrowLogical("node has no numeric value");
}
Number Node::MinNumber() {
    ThrowLogical("node has no numeric range");
}
Number Node::MaxNumber() {
    ThrowLogical("node has no numeric range");
}
Number Node::IncNumber() {
    return Number::Integer(1);
}
bool Node::EntryValue(std::string_view, int64_t&) {
    return false;
}

Number Node::ReadChecked(bool verify, bool ignoreCache) {
    const auto lock = Lock();
    const Number value = ReadNumber(ignoreCache);
    if (verify) {
        VerifyRange(value);
    }
    return value;
}

Number Node::ParseValueText(const std::string& text, bool real) const {
    const std::string_view trimmed = xml::Trim(text);
    int64_t integer = 0;
    double number = 0;
    if (!real && ParseInteger(trimmed, integer)) {
        return Number::Integer(integer);
    }
    if (real && ParseReal(trimmed, number)) {
        return Number::Real(number);
    }
    throw InvalidArgumentException(std::string(name_),
                                   "'" + text + "' is not " + (real ? "a number" : "an integer"));
}

void Node::WriteChecked(Number value, bool verify) {
    const auto lock = Lock();
    WriteNumber(value, verify);
    ReportDeviceError();
}

void Node::ReportDeviceError() {
    for (const Ref& error : errors_) {
        if (!error || !IsReadable(error.node->EffectiveAccessMode())) {
            continue;
        }
        const int64_t code = error.node->ReadNumber(true).AsInteger(error.name);
        if (code == 0) {
            continue;
        }
        std::string reason = "error " + std::to_string(code);
        if (auto* enumeration = dynamic_cast<IEnumeration*>(error.node)) {
            if (IEnumEntry* entry = enumeration->GetEntry(code)) {
                reason = entry->GetSymbolic();
            }
        }
        throw RuntimeException(std::string(name_), "the device reports " + reason + " (" +
                                                       std::string(error.name) + ")");
    }
}

void Node::PrepareWrite(Number value, bool verify) {
    RequireWritable();
    if (verify) {
        VerifyRange(value);
    }
}

void Node::VerifyRange(Number value) {
    if (value.isReal) {
        const double minimum = MinNumber().AsReal();
        const double maximum = MaxNumber().AsReal();
        if (!(value.real >= minimum && value.real <= maximum)) {
            throw OutOfRangeException(std::string(name_), "value " + std::to_string(value.real) +
                                                              " is outside [" +
                                                              std::to_string(minimum) + ", " +
                                                              std::to_string(maximum) + "]");
        }
        return;
    }
    const int64_t minimum = MinNumber().AsInteger(name_);
    const int64_t maximum = MaxNumber().AsInteger(name_);
    if (value.integer < minimum || value.integer > maximum) {
        throw OutOfRangeException(
            std::string(name_), "value " + std::to_string(value.integer) + " is outside [" +
                                    std::to_string(minimum) + ", " + std::to_string(maximum) + "]");
    }
    if (!HasIncrement()) {
        return;
    }
    const int64_t increment = IncNumber().AsInteger(name_);
    const uint64_t offset = static_cast<uint64_t>(value.integer) - static_cast<uint64_t>(minimum);
    if (increment > 1 && offset % static_cast<uint64_t>(increment) != 0) {
        throw OutOfRangeException(std::string(name_),
                                  "value " + std::to_string(value.integer) +
                                      " does not match the increment " + std::to_string(increment) +
                                      " from the minimum " + std::to_string(minimum));
    }
}

int64_t Node::IntegerForWrite(Number value) {
    if (!value.isReal) {
        return value.integer;
    }
    int64_t rounded = value.AsInteger(name_);
    if (!HasIncrement()) {
        return rounded;
    }
    const int64_t increment = IncNumber().AsInteger(name_);
    if (increment <= 1) {
        return rounded;
    }
    const int64_t minimum = MinNumber().AsInteger(name_);
    const uint64_t offset = static_cast<uint64_t>(rounded) - static_cast<uint64_t>(minimum);
    const auto residue = static_cast<int64_t>(offset % static_cast<uint64_t>(increment));
    return residue * 2 > increment ? rounded + (increment - residue) : rounded - residue;
}

// ---- loading -------------------------------------------------------------------------

void Node::Parse(const xml::Element& element, Loader& loader) {
    const xml::Document& doc = loader.Doc();
    if (doc.AttributeValue(element, "NameSpace") == "Standard") {
        nameSpace_ = Standard;
    }
    for (const xml::Element* child = doc.FirstChild(element); child != nullptr;
         child = doc.NextSibling(*child)) {
        if (child->name == "Extension") {
            continue;
        }
        const std::string_view attribute =
            child->attributeCount > 0 ? doc.AttributeValue(*child, "Offset") : std::string_view{};
        properties_.push_back(Property{child->name, child->text, attribute});
        ParseItem(*child, loader);
    }
}

void Node::ParseItem(const xml::Element& child, Loader& loader) {
    if (!ParseCommonChild(child.name, child, loader)) {
        ParseChild(child.name, child, loader);
    }
}

void Node::ResetCaches() {
    ClearCaches();
    cachedAccess_ = _UndefinedAccesMode;
}

bool Node::ParseChild(std::string_view, const xml::Element&, Loader&) {
    return false;
}

bool Node::ParseCommonChild(std::string_view tag, const xml::Element& child, Loader& loader) {
    const std::string_view text = child.text;
    if (tag == "ToolTip") {
        toolTip_ = text;
    } else if (tag == "Description") {
        description_ = text;
    } else if (tag == "DisplayName") {
        displayName_ = text;
    } else if (tag == "Visibility") {
        visibility_ = ParseVisibility(text);
    } else if (tag == "DocuURL") {
        docuUrl_ = text;
    } else if (tag == "IsDeprecated") {
        deprecated_ = ParseYesNo(text);
    } else if (tag == "EventID") {
        eventId_ = text;
    } else if (tag == "pIsImplemented") {
        isImplemented_.name = text;
    } else if (tag == "pIsAvailable") {
        isAvailable_.name = text;
    } else if (tag == "pIsLocked") {
        isLocked_.name = text;
    } else if (tag == "pBlockPolling") {
        blockPolling_.name = text;
    } else if (tag == "ImposedAccessMode") {
        bool known = true;
        imposedAccess_ = ParseAccessMode(text, known);
        if (!known) {
            map_.Warn("node " + std::string(name_) + ": unknown access mode '" + std::string(text) +
                      "'");
        }
    } else if (tag == "pError") {
        errors_.push_back(Ref{text});
    } else if (tag == "pAlias") {
        alias_.name = text;
    } else if (tag == "pCastAlias") {
        castAlias_.name = text;
    } else if (tag == "pInvalidator") {
        invalidators_.push_back(Ref{text});
    } else if (tag == "Streamable") {
        streamable_ = ParseYesNo(text);
    } else if (tag == "PollingTime") {
        pollingTime_ = loader.Integer(child, name_);
    } else {
        return false;
    }
    return true;
}

void Node::VisitReferences(const std::function<void(Ref&, RefKind)>& visit) {
    for (Ref* ref : {&isImplemented_, &isAvailable_, &isLocked_, &blockPolling_}) {
        if (!ref->name.empty()) {
            visit(*ref, RefKind::Access);
        }
    }
    for (Ref* ref : {&alias_, &castAlias_}) {
        if (!ref->name.empty()) {
            visit(*ref, RefKind::Metadata);
        }
    }
    for (Ref& ref : errors_) {
        visit(ref, RefKind::Access);
    }
    for (Ref& ref : invalidators_) {
        visit(ref, RefKind::Invalidating);
    }
}

void Node::Finish(Loader&) {}

// ---- graph ---------------------------------------------------------------------------

void Node::AddDependent(Node* node) {
    if (node != this) {
        dependents_.push_back(node);
    }
}

void Node::CompactDependents() {
    std::sort(dependents_.begin(), dependents_.end());
    dependents_.erase(std::unique(dependents_.begin(), dependents_.end()), dependents_.end());
}

void Node::AddChild(Node* node) {
    if (std::find(children_.begin(), children_.end(), node) == children_.end()) {
        children_.push_back(node);
    }
}

void Node::MarkFeature() {
    isFeature_ = true;
}

void Node::InvalidateWithDependents() {
    const uint64_t mark = map_.NextVisitMark();
    std::vector<Node*> pending{this};
    std::vector<Node*> notify;
    while (!pending.empty()) {
        Node* node = pending.back();
        pending.pop_back();
        if (node->visitMark_ == mark) {
            continue;
        }
        node->visitMark_ = mark;
        node->ClearCaches();
        node->cachedAccess_ = _UndefinedAccesMode;
        if (!node->callbacks_.empty()) {
            notify.push_back(node);
        }
        for (Node* selected : node->selectedNodes_) {
            selected->ClearCachesBelow(mark);
        }
        pending.insert(pending.end(), node->dependents_.begin(), node->dependents_.end());
    }
    for (Node* node : notify) {
        node->FireCallbacks();
    }
}

void Node::ClearCachesBelow(uint64_t mark) {
    std::vector<Node*> pending{this};
    while (!pending.empty()) {
        Node* node = pending.back();
        pending.pop_back();
        if (node->clearMark_ == mark) {
            continue;
        }
        node->clearMark_ = mark;
        node->ResetCaches();
        pending.insert(pending.end(), node->valueChildren_.begin(), node->valueChildren_.end());
    }
}

void Node::AdvancePolling(int64_t elapsedMilliseconds, std::vector<Node*>& expired) {
    if (pollingTime_ < 0) {
        return;
    }
    if (blockPolling_ && ReadFlag(blockPolling_, false)) {
        return;
    }
    pollingElapsed_ += elapsedMilliseconds;
    if (pollingElapsed_ >= pollingTime_) {
        pollingElapsed_ = 0;
        expired.push_back(this);
    }
}

// Iterative post-order walk: reference chains in a hostile file may be arbitrarily long.
// A node met again while its own walk is open (a cycle) contributes "not volatile".
bool Node::IsVolatile() const {
    if (volatileState_ == 0 || volatileState_ == 1) {
        return volatileState_ == 1;
    }
    struct Frame {
        const Node* node;
        size_t next;
        bool result;
    };
    volatileState_ = 2;
    std::vector<Frame> stack{{this, 0, IsVolatileSelf()}};
    while (!stack.empty()) {
        Frame& frame = stack.back();
        if (!frame.result && frame.next < frame.node->children_.size()) {
            const Node* child = frame.node->children_[frame.next++];
            if (child->volatileState_ == 1) {
                frame.result = true;
            } else if (child->volatileState_ == -1) {
                child->volatileState_ = 2;
                stack.push_back({child, 0, child->IsVolatileSelf()});
            }
            continue;
        }
        const bool result = frame.result;
        frame.node->volatileState_ = result ? 1 : 0;
        stack.pop_back();
        if (result && !stack.empty()) {
            stack.back().result = true;
        }
    }
    return volatileState_ == 1;
}

// ---- keyword tables ------------------------------------------------------------------

EAccessMode ParseAccessMode(std::string_view text, bool& known) {
    known = true;
    if (text == "RW") {
        return RW;
    }
    if (text == "RO") {
        return RO;
    }
    if (text == "WO") {
        return WO;
    }
    known = false;
    return RO;
}

EVisibility ParseVisibility(std::string_view text) {
    if (text == "Expert") {
        return Expert;
    }
    if (text == "Guru") {
        return Guru;
    }
    if (text == "Invisible") {
        return Invisible;
    }
    return Beginner;
}

ECachingMode ParseCachingMode(std::string_view text) {
    if (text == "NoCache") {
        return NoCache;
    }
    if (text == "WriteAround") {
        return WriteAround;
    }
    return WriteThrough;
}

ERepresentation ParseRepresentation(std::string_view text) {
    static constexpr std::pair<std::string_view, ERepresentation> kTable[] = {
        {"Linear", Linear},         {"Logarithmic", Logarithmic}, {"Boolean", Boolean},
        {"PureNumber", PureNumber}, {"HexNumber", HexNumber},     {"IPV4Address", IPV4Address},
        {"MACAddress", MACAddress}};
    for (const auto& [name, value] : kTable) {
        if (text == name) {
            return value;
        }
    }
    return PureNumber;
}

bool ParseYesNo(std::string_view text) {
    return text == "Yes";
}

bool Presentation::Parse(std::string_view tag, const xml::Element& child, Loader& loader,
                         std::string_view owner) {
    if (tag == "Unit") {
        unit = child.text;
    } else if (tag == "Representation") {
        representation = ParseRepresentation(child.text);
    } else if (tag == "DisplayNotation") {
        notation = ParseDisplayNotation(child.text);
    } else if (tag == "DisplayPrecision") {
        precision = loader.Integer(child, owner);
    } else {
        return false;
    }
    return true;
}

EDisplayNotation ParseDisplayNotation(std::string_view text) {
    if (text == "Fixed") {
        return fnFixed;
    }
    return text == "Scientific" ? fnScientific : fnAutomatic;
}

}  // namespace RyGenApi::detail

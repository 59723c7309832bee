// Base of every node: identity, descriptive items, the access-mode rules shared by all
// kinds, dependency edges and invalidation. Value kinds add a numeric protocol
// (ReadNumber / WriteNumber / bounds) that other nodes use to consume them.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "nodes/Number.h"
#include "ry/genicam/Exceptions.h"
#include "ry/genicam/Interfaces.h"
#include "xml/XmlDocument.h"

namespace RyGenApi::detail {

class NodeMapImpl;
class Loader;
class Node;

// A reference to another node by name; resolved once all nodes exist.
struct Ref {
    std::string_view name;
    Node* node = nullptr;
    explicit operator bool() const { return node != nullptr; }
};

// How a reference takes part in the dependency graph.
enum class RefKind {
    Value,         // value flows both ways; the target's changes invalidate us
    Reading,       // we read the target; its changes invalidate us
    Access,        // the target decides our access mode; its changes invalidate us
    Feature,       // a category lists the target
    Invalidating,  // only the target's changes invalidate us
    Selecting,     // we are a selector; our changes invalidate the target
    Metadata       // no effect on values
};

struct Property {
    std::string_view name;
    std::string_view value;
    std::string_view attribute;
};

// Display items shared by the value kinds: Unit, Representation, DisplayNotation and
// DisplayPrecision.
struct Presentation {
    std::string_view unit;
    std::optional<ERepresentation> representation;
    EDisplayNotation notation = fnAutomatic;
    int64_t precision = 6;
    // Takes the item when it is one of the four; false otherwise.
    bool Parse(std::string_view tag, const xml::Element& child, Loader& loader,
               std::string_view owner);
};

class Node : public virtual INode {
  public:
    Node(NodeMapImpl& map, std::string_view name, EInterfaceType principal);
    ~Node() override;

    // INode / IBase
    EAccessMode GetAccessMode() const override;
    // The access mode for callers that already hold the map lock.
    EAccessMode EffectiveAccessMode() const;
    std::string GetName(bool fullQualified = false) const override;
    ENameSpace GetNameSpace() const override { return nameSpace_; }
    EVisibility GetVisibility() const override;
    std::string GetToolTip() const override { return std::string(toolTip_); }
    std::string GetDescription() const override { return std::string(description_); }
    std::string GetDisplayName() const override;
    std::string GetDocuURL() const override { return std::string(docuUrl_); }
    std::string GetEventID() const override { return std::string(eventId_); }
    ECachingMode GetCachingMode() const override;
    int64_t GetPollingTime() const override { return pollingTime_; }
    bool IsStreamable() const override { return streamable_; }
    bool IsDeprecated() const override { return deprecated_; }
    bool IsFeature() const override { return isFeature_; }
    INode* GetAlias() const override { return alias_.node; }
    INode* GetCastAlias() const override { return castAlias_.node; }
    EInterfaceType GetPrincipalInterfaceType() const override { return principal_; }
    void GetChildren(NodeList_t& children) const override;
    void GetParents(NodeList_t& parents) const override;
    void GetPropertyNames(StringList_t& names) const override;
    bool GetProperty(const std::string& name, std::string& value,
                     std::string& attribute) const override;
    void InvalidateNode() override;
    void ImposeAccessMode(EAccessMode mode) override;
    void ImposeVisibility(EVisibility visibility) override;
    INodeMap* GetNodeMap() const override;
    CallbackHandle RegisterCallback(Callback callback) override;
    bool DeregisterCallback(CallbackHandle handle) override;

    // Numeric protocol used when another node consumes this one. The defaults throw a
    // LogicalErrorException: the node holds no number.
    virtual Number ReadNumber(bool ignoreCache);
    virtual void WriteNumber(Number value, bool verify);
    virtual Number MinNumber();
    virtual Number MaxNumber();
    virtual Number IncNumber();
    virtual bool HasIncrement() { return true; }
    // Value of the enumeration entry with this symbolic name (formula "X.Entry.S" binding).
    virtual bool EntryValue(std::string_view symbolic, int64_t& value);
    virtual ERepresentation RepresentationValue() { return PureNumber; }
    virtual std::string UnitValue() { return {}; }
    virtual EDisplayNotation NotationValue() { return fnAutomatic; }
    virtual int64_t PrecisionValue() { return 6; }
    // Public read and write under the map lock; with verify the value read is range checked.
    Number ReadChecked(bool verify, bool ignoreCache);
    // Text given to FromString; throws InvalidArgumentException naming the node.
    Number ParseValueText(const std::string& text, bool real) const;
    void WriteChecked(Number value, bool verify);
    // Checks access and, with verify, range and increment before a write.
    void PrepareWrite(Number value, bool verify);
    // After a write: a device that reports failures through pError enumerations has the
    // failure read back and thrown as a RuntimeException naming the error entry.
    void ReportDeviceError();

    // Loading.
    void Parse(const xml::Element& element, Loader& loader);
    // Enumerates every reference with its role; the loader resolves and links them.
    virtual void VisitReferences(const std::function<void(Ref&, RefKind)>& visit);
    // Called once all references are resolved.
    virtual void Finish(Loader& loader);

    // Graph maintenance.
    void AddDependent(Node* node);
    // Drops repeated dependents once linking is over (cheaper than checking every insert:
    // the device port alone gains thousands).
    void CompactDependents();
    // Scratch colour of the loader's cycle search.
    uint8_t& LoadColour() { return loadColour_; }
    void AddChild(Node* node);
    void AddValueChild(Node* node) { valueChildren_.push_back(node); }
    void AddSelected(Node* node) { selectedNodes_.push_back(node); }
    const std::vector<Node*>& ValueChildren() const { return valueChildren_; }
    // Forgets cached register bytes and access mode of this node only.
    void ResetCaches();
    void MarkFeature();
    std::string_view NameView() const { return name_; }
    // Clears this node's caches and those of every node depending on it.
    void InvalidateWithDependents();
    void AdvancePolling(int64_t elapsedMilliseconds, std::vector<Node*>& expired);
    // True when something below this node must never be served from a cache.
    bool IsVolatile() const;

    // Throws AccessException unless the node is readable / writable right now.
    void RequireReadable() const;
    void RequireWritable() const;
    [[noreturn]] void ThrowLogical(const std::string& message) const;

    NodeMapImpl& Map() const { return map_; }
    // Calls from several threads are serialised by the node map; the lock is recursive
    // because nodes call into each other.
    std::unique_lock<std::recursive_mutex> Lock() const;

  protected:
    // Handles a type-specific child element; returns false for elements it does not know.
    virtual bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader);
    // Common items first, then the type-specific ones.
    void ParseItem(const xml::Element& child, Loader& loader);
    virtual EAccessMode NaturalAccessMode() const { return RO; }
    virtual void ClearCaches() {}
    virtual bool IsVolatileSelf() const { return pollingTime_ >= 0; }

    void VerifyRange(Number value);
    // Converts an incoming value for an integer-like node: reals are rounded and snapped
    // onto the increment grid measured from the minimum.
    int64_t IntegerForWrite(Number value);
    bool ReadFlag(const Ref& ref, bool whenUnreadable) const;
    std::string_view Text(const xml::Element& child) const { return child.text; }

    NodeMapImpl& map_;
    std::string_view name_;
    EInterfaceType principal_;
    ENameSpace nameSpace_ = Custom;
    std::string_view toolTip_;
    std::string_view description_;
    std::string_view displayName_;
    std::string_view docuUrl_;
    std::string_view eventId_;
    EVisibility visibility_ = Beginner;
    EVisibility imposedVisibility_ = Beginner;
    EAccessMode imposedAccess_ = RW;         // from the file
    EAccessMode runtimeImposedAccess_ = RW;  // from the API
    int64_t pollingTime_ = -1;
    int64_t pollingElapsed_ = 0;
    bool streamable_ = false;
    bool deprecated_ = false;
    bool isFeature_ = false;
    Ref isImplemented_;
    Ref isAvailable_;
    Ref isLocked_;
    Ref blockPolling_;
    Ref alias_;
    Ref castAlias_;
    std::vector<Ref> invalidators_;
    std::vector<Ref> errors_;
    std::vector<Property> properties_;
    std::vector<Node*> dependents_;
    std::vector<Node*> children_;
    std::vector<Node*> valueChildren_;  // nodes read while computing our value

  private:
    bool ParseCommonChild(std::string_view tag, const xml::Element& child, Loader& loader);
    EAccessMode ComputeAccessMode() const;
    void FireCallbacks();

    mutable EAccessMode cachedAccess_ = _UndefinedAccesMode;
    mutable uint64_t accessEpoch_ = 0;  // the node map's cache epoch of cachedAccess_
    mutable bool accessBusy_ = false;
    mutable int8_t volatileState_ = -1;  // -1 unknown, 0 no, 1 yes, 2 being computed
    // A selector switches what the device shows behind the selected features, often at the
    // same register address, so the caches below a selected feature must go too.
    void ClearCachesBelow(uint64_t mark);

    std::vector<Node*> selectedNodes_;
    uint64_t visitMark_ = 0;
    uint64_t clearMark_ = 0;
    uint8_t loadColour_ = 0;
    std::map<CallbackHandle, Callback> callbacks_;
    CallbackHandle nextCallback_ = 1;
};

// Reads the keyword tables of description files; unknown text yields the fallback.
EAccessMode ParseAccessMode(std::string_view text, bool& known);
EVisibility ParseVisibility(std::string_view text);
ECachingMode ParseCachingMode(std::string_view text);
ERepresentation ParseRepresentation(std::string_view text);
bool ParseYesNo(std::string_view text);
EDisplayNotation ParseDisplayNotation(std::string_view text);

}  // namespace RyGenApi::detail

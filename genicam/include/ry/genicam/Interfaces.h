// Abstract node interfaces. A node found by name is an INode; callers cast it with
// dynamic_cast to the value interface they need (a failed cast means "not that kind").
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "ry/genicam/Types.h"

namespace RyGenApi {

class INodeMap;

class IBase {
  public:
    virtual ~IBase() = default;
    virtual EAccessMode GetAccessMode() const = 0;
};

// Register access supplied by the transport side. Addresses and lengths are in bytes.
class IPort : virtual public IBase {
  public:
    virtual void Read(void* buffer, int64_t address, int64_t length) = 0;
    virtual void Write(const void* buffer, int64_t address, int64_t length) = 0;
};

class INode : virtual public IBase {
  public:
    using Callback = std::function<void(INode*)>;
    using CallbackHandle = int64_t;

    virtual std::string GetName(bool fullQualified = false) const = 0;
    virtual ENameSpace GetNameSpace() const = 0;
    virtual EVisibility GetVisibility() const = 0;
    virtual std::string GetToolTip() const = 0;
    virtual std::string GetDescription() const = 0;
    virtual std::string GetDisplayName() const = 0;
    virtual std::string GetDocuURL() const = 0;
    virtual std::string GetEventID() const = 0;
    virtual ECachingMode GetCachingMode() const = 0;
    // Milliseconds between forced refreshes, -1 when the node is not polled.
    virtual int64_t GetPollingTime() const = 0;
    virtual bool IsStreamable() const = 0;
    virtual bool IsDeprecated() const = 0;
    virtual bool IsFeature() const = 0;
    virtual INode* GetAlias() const = 0;
    virtual INode* GetCastAlias() const = 0;
    virtual EInterfaceType GetPrincipalInterfaceType() const = 0;
    // Nodes this node reads from (features of a category, value and address sources ...).
    virtual void GetChildren(NodeList_t& children) const = 0;
    // Nodes that read from this node.
    virtual void GetParents(NodeList_t& parents) const = 0;
    // Item names of the node's description as written in the file ("pValue", "PollingTime").
    virtual void GetPropertyNames(StringList_t& names) const = 0;
    // Text of the named item; for references the target's name. Returns false when the
    // node has no such item.
    virtual bool GetProperty(const std::string& name, std::string& value,
                             std::string& attribute) const = 0;
    virtual void InvalidateNode() = 0;
    virtual void ImposeAccessMode(EAccessMode mode) = 0;
    virtual void ImposeVisibility(EVisibility visibility) = 0;
    virtual INodeMap* GetNodeMap() const = 0;
    virtual CallbackHandle RegisterCallback(Callback callback) = 0;
    virtual bool DeregisterCallback(CallbackHandle handle) = 0;
};

class IValue : virtual public IBase {
  public:
    virtual INode* GetNode() = 0;
    virtual std::string ToString(bool verify = false, bool ignoreCache = false) = 0;
    virtual void FromString(const std::string& text, bool verify = true) = 0;
    virtual bool IsValueCacheValid() const = 0;
};

class IInteger : virtual public IValue {
  public:
    virtual void SetValue(int64_t value, bool verify = true) = 0;
    virtual int64_t GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t GetMin() = 0;
    virtual int64_t GetMax() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual int64_t GetInc() = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual std::string GetUnit() = 0;
    virtual void ImposeMin(int64_t value) = 0;
    virtual void ImposeMax(int64_t value) = 0;
};

class IFloat : virtual public IValue {
  public:
    virtual void SetValue(double value, bool verify = true) = 0;
    virtual double GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual double GetMin() = 0;
    virtual double GetMax() = 0;
    virtual bool HasInc() = 0;
    virtual EIncMode GetIncMode() = 0;
    virtual double GetInc() = 0;
    virtual ERepresentation GetRepresentation() = 0;
    virtual std::string GetUnit() = 0;
    virtual EDisplayNotation GetDisplayNotation() = 0;
    virtual int64_t GetDisplayPrecision() = 0;
    virtual void ImposeMin(double value) = 0;
    virtual void ImposeMax(double value) = 0;
};

class IEnumEntry : virtual public IValue {
  public:
    virtual int64_t GetValue() = 0;
    virtual std::string GetSymbolic() const = 0;
    virtual double GetNumericValue() = 0;
    virtual bool IsSelfClearing() = 0;
};

class IEnumeration : virtual public IValue {
  public:
    // Symbolic names of the entries that are currently available.
    virtual void GetSymbolics(StringList_t& symbolics) = 0;
    // Every entry in file order, unavailable ones included.
    virtual void GetEntries(NodeList_t& entries) = 0;
    virtual void SetIntValue(int64_t value, bool verify = true) = 0;
    virtual int64_t GetIntValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual IEnumEntry* GetEntryByName(const std::string& symbolic) = 0;
    virtual IEnumEntry* GetEntry(int64_t value) = 0;
    virtual IEnumEntry* GetCurrentEntry(bool verify = false, bool ignoreCache = false) = 0;
};

class IBoolean : virtual public IValue {
  public:
    virtual void SetValue(bool value, bool verify = true) = 0;
    virtual bool GetValue(bool verify = false, bool ignoreCache = false) = 0;
};

class ICommand : virtual public IValue {
  public:
    virtual void Execute(bool verify = true) = 0;
    virtual bool IsDone(bool verify = true) = 0;
};

class IString : virtual public IValue {
  public:
    virtual void SetValue(const std::string& value, bool verify = true) = 0;
    virtual std::string GetValue(bool verify = false, bool ignoreCache = false) = 0;
    virtual int64_t GetMaxLength() = 0;
};

class IRegister : virtual public IValue {
  public:
    virtual void Set(const uint8_t* buffer, int64_t length, bool verify = true) = 0;
    virtual void Get(uint8_t* buffer, int64_t length, bool verify = false,
                     bool ignoreCache = false) = 0;
    virtual int64_t GetLength() = 0;
    virtual int64_t GetAddress() = 0;
};

class ICategory : virtual public IValue {
  public:
    virtual void GetFeatures(FeatureList_t& features) = 0;
};

class INodeMap {
  public:
    virtual ~INodeMap() = default;
    virtual void GetNodes(NodeList_t& nodes) const = 0;
    virtual INode* GetNode(const std::string& name) const = 0;
    virtual void InvalidateNodes() const = 0;
    // Connects a port to the Port node of that name; false when there is no such node.
    virtual bool Connect(IPort* port, const std::string& portName) const = 0;
    virtual bool Connect(IPort* port) const = 0;
    virtual std::string GetDeviceName() = 0;
    // Advances the polling clocks; nodes whose period elapsed are invalidated.
    virtual void Poll(int64_t elapsedMilliseconds) = 0;
    virtual int64_t GetNumNodes() const = 0;
};

}  // namespace RyGenApi

// Ports, categories, enumerations, booleans, commands, strings and the inert legacy kinds.
#pragma once

#include <optional>

#include "nodes/Facades.h"

namespace RyGenApi::detail {

class PortNode : public Node, public virtual IPort {
  public:
    PortNode(NodeMapImpl& map, std::string_view name) : Node(map, name, intfIPort) {}
    void Read(void* buffer, int64_t address, int64_t length) override;
    void Write(const void* buffer, int64_t address, int64_t length) override;
    bool IsConnected() const { return connected_ != nullptr; }
    void Connect(IPort* port) { connected_ = port; }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override { return connected_ ? RW : NA; }

  private:
    IPort* connected_ = nullptr;
    bool swapEndianess_ = false;
};

// Common IValue behaviour of nodes whose value is not a number.
class TextValueNode : public Node, public virtual IValue {
  public:
    using Node::Node;
    INode* GetNode() override { return this; }
    bool IsValueCacheValid() const override { return !IsVolatile(); }
};

class CategoryNode : public TextValueNode, public virtual ICategory {
  public:
    CategoryNode(NodeMapImpl& map, std::string_view name)
        : TextValueNode(map, name, intfICategory) {}
    std::string ToString(bool, bool) override { return {}; }
    void FromString(const std::string&, bool) override;
    void GetFeatures(FeatureList_t& features) override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    const std::vector<Ref>& Features() const { return features_; }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override { return RO; }

  private:
    std::vector<Ref> features_;
};

class EnumEntryNode : public TextValueNode, public virtual IEnumEntry {
  public:
    EnumEntryNode(NodeMapImpl& map, std::string_view name, std::string_view symbolic)
        : TextValueNode(map, name, intfIEnumEntry), symbolic_(symbolic) {}
    std::string ToString(bool, bool) override {
        const auto lock = this->Lock();
        return std::string(symbolic_);
    }
    void FromString(const std::string&, bool) override;
    int64_t GetValue() override {
        const auto lock = this->Lock();
        return value_;
    }
    std::string GetSymbolic() const override { return std::string(symbolic_); }
    double GetNumericValue() override {
        const auto lock = this->Lock();
        return numeric_ ? *numeric_ : static_cast<double>(value_);
    }
    bool IsSelfClearing() override { return selfClearing_; }
    Number ReadNumber(bool) override { return Number::Integer(value_); }
    std::string_view Symbolic() const { return symbolic_; }
    int64_t Value() const { return value_; }
    bool HasNumericValue() const { return numeric_.has_value(); }

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override { return RO; }

  private:
    std::string_view symbolic_;
    int64_t value_ = 0;
    std::optional<double> numeric_;
    bool selfClearing_ = false;
};

class EnumerationNode : public TextValueNode, public virtual IEnumeration {
  public:
    EnumerationNode(NodeMapImpl& map, std::string_view name)
        : TextValueNode(map, name, intfIEnumeration) {}
    std::string ToString(bool verify, bool ignoreCache) override;
    void FromString(const std::string& symbolic, bool verify) override;
    void GetSymbolics(StringList_t& symbolics) override;
    void GetEntries(NodeList_t& entries) override;
    void SetIntValue(int64_t value, bool verify) override;
    int64_t GetIntValue(bool verify, bool ignoreCache) override;
    IEnumEntry* GetEntryByName(const std::string& symbolic) override;
    IEnumEntry* GetEntry(int64_t value) override;
    IEnumEntry* GetCurrentEntry(bool verify, bool ignoreCache) override;

    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override;
    Number MaxNumber() override;
    bool EntryValue(std::string_view symbolic, int64_t& value) override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    void Finish(Loader& loader) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    EnumEntryNode* FindEntry(int64_t value) const;
    EnumEntryNode* FindSymbolic(std::string_view symbolic) const;

    std::vector<EnumEntryNode*> entries_;
    std::vector<Ref> entryRefs_;  // entries declared at top level and referenced by name
    std::optional<int64_t> constant_;
    Ref value_;
    std::vector<Ref> selected_;
    bool hasNumericValues_ = false;
};

class BooleanNode : public TextValueNode, public virtual IBoolean {
  public:
    BooleanNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfIBoolean) {}
    std::string ToString(bool verify, bool ignoreCache) override;
    void FromString(const std::string& text, bool verify) override;
    void SetValue(bool value, bool verify) override;
    bool GetValue(bool verify, bool ignoreCache) override;
    Number ReadNumber(bool ignoreCache) override;
    void WriteNumber(Number value, bool verify) override;
    Number MinNumber() override { return Number::Integer(INT64_MIN); }
    Number MaxNumber() override { return Number::Integer(INT64_MAX); }
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    std::optional<int64_t> constant_;
    Ref value_;
    int64_t onValue_ = 1;
    int64_t offValue_ = 0;
    std::vector<Ref> selected_;
};

class CommandNode : public TextValueNode, public virtual ICommand {
  public:
    CommandNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfICommand) {}
    std::string ToString(bool, bool) override;
    void FromString(const std::string& text, bool verify) override;
    void Execute(bool verify) override;
    bool IsDone(bool verify) override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    int64_t CommandValue() const;

    std::optional<int64_t> constant_;
    Ref value_;
    int64_t commandValue_ = 1;
    Ref commandValueRef_;
};

class StringNode : public TextValueNode, public virtual IString {
  public:
    StringNode(NodeMapImpl& map, std::string_view name) : TextValueNode(map, name, intfIString) {}
    std::string ToString(bool verify, bool ignoreCache) override {
        return GetValue(verify, ignoreCache);
    }
    void FromString(const std::string& text, bool verify) override { SetValue(text, verify); }
    void SetValue(const std::string& value, bool verify) override;
    std::string GetValue(bool verify, bool ignoreCache) override;
    int64_t GetMaxLength() override;
    void VisitReferences(const std::function<void(Ref&, RefKind)>& visit) override;
    void Finish(Loader& loader) override;

  protected:
    bool ParseChild(std::string_view tag, const xml::Element& child, Loader& loader) override;
    EAccessMode NaturalAccessMode() const override;

  private:
    std::string value_;
    bool hasConstant_ = false;
    Ref target_;
    IString* targetString_ = nullptr;
};

// Kinds that describe IEEE 1394 configuration ROM data (ConfRom, TextDesc, IntKey,
// SmartFeature). No GigE Vision or USB3 Vision device carries that data, so these nodes load
// and report "not implemented".
class LegacyNode : public Node {
  public:
    using Node::Node;

  protected:
    EAccessMode NaturalAccessMode() const override { return NI; }
};

class LegacyTextNode : public TextValueNode, public virtual IString {
  public:
    LegacyTextNode(NodeMapImpl& map, std::string_view name)
        : TextValueNode(map, name, intfIString) {}
    std::string ToString(bool verify, bool ignoreCache) override {
        return GetValue(verify, ignoreCache);
    }
    void FromString(const std::string& text, bool verify) override { SetValue(text, verify); }
    void SetValue(const std::string&, bool) override {
        const auto lock = this->Lock();
        RequireWritable();
    }
    std::string GetValue(bool, bool) override {
        const auto lock = this->Lock();
        RequireReadable();
        return {};
    }
    int64_t GetMaxLength() override {
        const auto lock = this->Lock();
        return 0;
    }

  protected:
    EAccessMode NaturalAccessMode() const override { return NI; }
};

using LegacyIntegerNode = IntegerFacade<LegacyNode>;

}  // namespace RyGenApi::detail

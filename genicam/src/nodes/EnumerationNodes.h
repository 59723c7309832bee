// Enumerations and their entries.
#pragma once

#include <optional>

#include "nodes/TextValueNode.h"

namespace RyGenApi::detail {

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

}  // namespace RyGenApi::detail

#include <gtest/gtest.h>

#include "TestSupport.h"

namespace RyGenApi::testing {
namespace {

std::string Reg(const std::string& name, const std::string& items,
                const std::string& kind = "IntReg") {
    return "<" + kind + " Name=\"" + name + "\">" + items + "<pPort>Device</pPort></" + kind + ">";
}

TEST(AccessMode, CombinationTableCorners) {
    EXPECT_EQ(Combine(RO, WO), NA);
    EXPECT_EQ(Combine(WO, RW), WO);
    EXPECT_EQ(Combine(RO, RW), RO);
    EXPECT_EQ(Combine(NA, NI), NI);
    EXPECT_EQ(Combine(RW, NA), NA);
    EXPECT_EQ(Combine(RW, RW), RW);
}

TEST(AccessMode, ImplementedAvailableLockedAndImposed) {
    Fixture f(R"(
      <Integer Name="Impl"><Value>1</Value></Integer>
      <Integer Name="Avail"><Value>1</Value></Integer>
      <Integer Name="Locked"><Value>0</Value></Integer>
      <Integer Name="Target"><pIsImplemented>Impl</pIsImplemented><pIsAvailable>Avail</pIsAvailable>
        <pIsLocked>Locked</pIsLocked><pValue>Conv</pValue></Integer>
      <IntConverter Name="Conv"><pValue>R</pValue><FormulaTo>FROM</FormulaTo><FormulaFrom>TO</FormulaFrom></IntConverter>
      <Integer Name="WoTarget"><pIsLocked>Locked</pIsLocked><pValue>WoReg</pValue></Integer>
      <Integer Name="Imposed"><ImposedAccessMode>WO</ImposedAccessMode><pValue>RoReg</pValue></Integer>
      <Integer Name="ImposedRo"><ImposedAccessMode>RO</ImposedAccessMode><pValue>R</pValue></Integer>
      <Integer Name="UnreadableFlag"><pIsAvailable>WoReg</pIsAvailable><Value>3</Value></Integer>
      )" + Reg("R", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>") +
              Reg("WoReg", "<Address>8</Address><Length>4</Length><AccessMode>WO</AccessMode>") +
              Reg("RoReg", "<Address>16</Address><Length>4</Length><AccessMode>RO</AccessMode>"));
    auto* target = f.Get<IInteger>("Target");
    EXPECT_EQ(target->GetAccessMode(), RW);  // chain through the converter
    f.Get<IInteger>("Locked")->SetValue(1);
    EXPECT_EQ(target->GetAccessMode(), RO);  // invalidated through the dependency
    EXPECT_EQ(f.Get<IInteger>("WoTarget")->GetAccessMode(), NA);
    f.Get<IInteger>("Avail")->SetValue(0);
    EXPECT_EQ(target->GetAccessMode(), NA);
    f.Get<IInteger>("Impl")->SetValue(0);
    EXPECT_EQ(target->GetAccessMode(), NI);  // not implemented wins over not available
    EXPECT_EQ(f.Get<IInteger>("Imposed")->GetAccessMode(), NA);
    EXPECT_EQ(f.Get<IInteger>("ImposedRo")->GetAccessMode(), RO);
    EXPECT_EQ(f.Get<IInteger>("UnreadableFlag")->GetAccessMode(), NA);
    EXPECT_THROW(target->GetValue(), AccessException);
    EXPECT_THROW(f.Get<IInteger>("ImposedRo")->SetValue(1), AccessException);
    f.map._GetNode("ImposedRo")->ImposeAccessMode(NA);
    EXPECT_EQ(f.Get<IInteger>("ImposedRo")->GetAccessMode(), NA);
}

TEST(AccessMode, CycleThroughAccessInputsCountsAsReadWrite) {
    Fixture f(R"(
      <Integer Name="A"><pIsAvailable>B</pIsAvailable><Value>1</Value></Integer>
      <Integer Name="B"><pIsAvailable>A</pIsAvailable><Value>1</Value></Integer>)");
    EXPECT_EQ(f.Get<IInteger>("A")->GetAccessMode(), RW);
    EXPECT_EQ(f.Get<IInteger>("A")->GetValue(), 1);
}

TEST(Registers, AddressTermsIndexAndLength) {
    Fixture f(
        R"(
      <Integer Name="Sel"><Value>2</Value></Integer>
      <Integer Name="Base"><Value>0x1000</Value></Integer>
      <Integer Name="Stride"><Value>0x20</Value></Integer>
      <Integer Name="Len"><Value>4</Value></Integer>
      )" +
        Reg("A", R"(<Address>0xD0005200</Address><Address>0x08</Address><Length>4</Length>
                     <AccessMode>RO</AccessMode>)") +
        Reg("B", R"(<pAddress>Base</pAddress><pAddress>Base</pAddress>
                     <IntSwissKnife Name="Inline"><pVariable Name="S">Sel</pVariable><Formula>S * 4</Formula></IntSwissKnife>
                     <pIndex Offset="64">Sel</pIndex><Length>4</Length><AccessMode>RO</AccessMode>)") +
        Reg("C",
            R"(<Address>0x100</Address><pIndex>Sel</pIndex><Length>8</Length><AccessMode>RO</AccessMode>)") +
        Reg("D",
            R"(<Address>0x100</Address><pIndex pOffset="Stride">Sel</pIndex><pLength>Len</pLength>
                     <AccessMode>RW</AccessMode>)",
            "Register"));
    EXPECT_EQ(f.Get<IRegister>("A")->GetAddress(), 0xD0005208);
    EXPECT_EQ(f.Get<IRegister>("B")->GetAddress(), 0x2000 + 8 + 128);
    EXPECT_EQ(f.Get<IInteger>("Inline")->GetValue(), 8);    // inline formulas are nodes too
    EXPECT_EQ(f.Get<IRegister>("C")->GetAddress(), 0x110);  // stride = length
    auto* d = f.Get<IRegister>("D");
    EXPECT_EQ(d->GetAddress(), 0x140);
    EXPECT_EQ(d->GetLength(), 4);
    f.Get<IInteger>("Len")->SetValue(6);
    EXPECT_EQ(d->GetLength(), 6);
    const uint8_t bytes[6] = {1, 2, 3, 4, 5, 6};
    d->Set(bytes, 6);
    EXPECT_EQ(f.port.memory[0x145], 6);
    uint8_t back[6] = {};
    d->Get(back, 6);
    EXPECT_EQ(back[2], 3);
    EXPECT_THROW(d->Set(bytes, 4), InvalidArgumentException);
    EXPECT_THROW(d->Get(back, 7), InvalidArgumentException);
}

TEST(Registers, SignAndByteOrder) {
    std::string nodes;
    for (int length : {1, 2, 3, 4, 8}) {
        const std::string l = std::to_string(length);
        nodes += Reg("S" + l, "<Address>0x200</Address><Length>" + l +
                                  "</Length><AccessMode>RW</AccessMode><Sign>Signed</Sign>"
                                  "<Endianess>BigEndian</Endianess>");
    }
    nodes += Reg("Little", "<Address>0x300</Address><Length>4</Length><AccessMode>RW</AccessMode>");
    nodes += Reg("Big",
                 "<Address>0x300</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                 "<Endianess>BigEndian</Endianess><Cachable>NoCache</Cachable>");
    Fixture f(nodes);
    f.port.PokeBytes(0x200, {0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE});
    EXPECT_EQ(f.Get<IInteger>("S1")->GetValue(), -1);
    EXPECT_EQ(f.Get<IInteger>("S2")->GetValue(), -1);
    EXPECT_EQ(f.Get<IInteger>("S3")->GetValue(), -1);
    EXPECT_EQ(f.Get<IInteger>("S8")->GetValue(), -2);
    EXPECT_EQ(f.Get<IInteger>("S2")->GetMin(), -32768);
    EXPECT_EQ(f.Get<IInteger>("S3")->GetMax(), 8388607);
    EXPECT_EQ(f.Get<IInteger>("S8")->GetMin(), INT64_MIN);
    EXPECT_EQ(f.Get<IInteger>("Little")->GetMax(), 0xFFFFFFFF);
    f.Get<IInteger>("Little")->SetValue(0x11223344);
    EXPECT_EQ(f.port.memory[0x300], 0x44);
    EXPECT_EQ(f.Get<IInteger>("Big")->GetValue(), 0x44332211);
    EXPECT_THROW(f.Get<IInteger>("S1")->SetValue(128), OutOfRangeException);
    f.Get<IInteger>("S4")->SetValue(-5);
    EXPECT_EQ(f.port.Peek32BigEndian(0x200), 0xFFFFFFFBu);
}

TEST(BitFields, BigAndLittleEndianNumbering) {
    Fixture f(Reg("Packet", R"(<Address>0xD04</Address><Length>4</Length><AccessMode>RW</AccessMode>
                  <LSB>31</LSB><MSB>16</MSB><Endianess>BigEndian</Endianess>)",
                  "MaskedIntReg") +
              Reg("TopBit", R"(<Address>0xD04</Address><Length>4</Length><AccessMode>RW</AccessMode>
                  <Bit>0</Bit><Endianess>BigEndian</Endianess>)",
                  "MaskedIntReg") +
              Reg("Small", R"(<Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>
                  <LSB>4</LSB><MSB>6</MSB><Sign>Signed</Sign>)",
                  "MaskedIntReg") +
              Reg("WriteOnly",
                  R"(<Address>0x20</Address><Length>4</Length><AccessMode>WO</AccessMode>
                  <LSB>8</LSB><MSB>15</MSB>)",
                  "MaskedIntReg") +
              R"(<StructReg Comment="wide"><Address>0x40</Address><Length>8</Length>
                  <AccessMode>RW</AccessMode><pPort>Device</pPort><Endianess>LittleEndian</Endianess>
                  <StructEntry Name="High"><LSB>32</LSB><MSB>63</MSB></StructEntry>
                  <StructEntry Name="Whole"><LSB>0</LSB><MSB>63</MSB><AccessMode>RO</AccessMode></StructEntry>
                 </StructReg>)");
    f.port.Poke32BigEndian(0xD04, 0xC0001234);
    auto* packet = f.Get<IInteger>("Packet");
    EXPECT_EQ(packet->GetValue(), 0x1234);
    EXPECT_EQ(packet->GetMax(), 0xFFFF);
    EXPECT_EQ(f.Get<IInteger>("TopBit")->GetValue(), 1);
    packet->SetValue(1500);
    EXPECT_EQ(f.port.Peek32BigEndian(0xD04), 0xC0000000u | 1500u);  // other bits kept

    f.port.Poke32LittleEndian(0x10, 0x50);  // field bits 6..4 = 101 -> -3
    EXPECT_EQ(f.Get<IInteger>("Small")->GetValue(), -3);
    EXPECT_EQ(f.Get<IInteger>("Small")->GetMin(), -4);
    EXPECT_THROW(f.Get<IInteger>("Small")->SetValue(4), OutOfRangeException);

    const int readsBefore = f.port.reads;
    f.Get<IInteger>("WriteOnly")->SetValue(0xAB);
    EXPECT_EQ(f.port.reads, readsBefore);  // no read of a write-only register
    EXPECT_EQ(f.port.Peek32LittleEndian(0x20), 0xAB00u);

    f.Get<IInteger>("High")->SetValue(0x89ABCDEF);
    EXPECT_EQ(f.Get<IInteger>("Whole")->GetValue(), static_cast<int64_t>(0x89ABCDEF00000000ull));
    EXPECT_EQ(f.Get<IInteger>("Whole")->GetAccessMode(), RO);
    EXPECT_EQ(f.Get<IInteger>("High")->GetAccessMode(), RW);
}

TEST(Values, IntegerBoundsIncrementAndVerify) {
    Fixture f(R"(
      <Integer Name="W"><pValue>WReg</pValue><Min>16</Min><pMax>WMax</pMax><Inc>8</Inc></Integer>
      <Integer Name="WMax"><Value>1024</Value></Integer>
      <Integer Name="Plain"><pValue>WReg</pValue></Integer>
      <Float Name="F"><pValue>WReg</pValue><Min>0</Min><Max>2000</Max></Float>
      <Float Name="Fc"><Value>1.5</Value><Min>-2</Min><Max>2</Max><Unit>ms</Unit></Float>)" +
              Reg("WReg", "<Address>0</Address><Length>2</Length><AccessMode>RW</AccessMode>"));
    auto* w = f.Get<IInteger>("W");
    EXPECT_EQ(w->GetMin(), 16);
    EXPECT_EQ(w->GetMax(), 1024);
    EXPECT_EQ(w->GetInc(), 8);
    w->SetValue(640);
    EXPECT_EQ(w->GetValue(), 640);
    EXPECT_THROW(w->SetValue(641), OutOfRangeException);
    EXPECT_THROW(w->SetValue(8), OutOfRangeException);
    EXPECT_THROW(w->SetValue(2048), OutOfRangeException);
    w->SetValue(2048, false);  // no verify: written as is, truncated by the register
    EXPECT_EQ(f.Get<IInteger>("Plain")->GetMax(), 0xFFFF);  // bounds of the target
    // A float written to an integer target rounds and snaps to the target's increment.
    f.Get<IFloat>("F")->SetValue(643.6);
    EXPECT_EQ(f.Get<IInteger>("Plain")->GetValue(), 644);
    auto* fc = f.Get<IFloat>("Fc");
    EXPECT_DOUBLE_EQ(fc->GetValue(), 1.5);
    EXPECT_FALSE(fc->HasInc());
    EXPECT_EQ(fc->GetUnit(), "ms");
    EXPECT_THROW(fc->SetValue(2.5), OutOfRangeException);
    fc->FromString("-1.25");
    EXPECT_EQ(fc->ToString(), "-1.25");
    EXPECT_THROW(fc->FromString("abc"), InvalidArgumentException);
}

TEST(Values, ConverterDirectionAndSlope) {
    Fixture f(R"(
      <Converter Name="Exposure"><pVariable Name="K">Scale</pVariable>
        <FormulaTo>FROM / K</FormulaTo><FormulaFrom>TO * K</FormulaFrom><pValue>Raw</pValue>
        <Slope>Increasing</Slope></Converter>
      <IntConverter Name="Binning"><FormulaTo>FROM - 1</FormulaTo><FormulaFrom>TO + 1</FormulaFrom>
        <pValue>BinReg</pValue></IntConverter>
      <Converter Name="Inverse"><FormulaTo>1000 / FROM</FormulaTo><FormulaFrom>(TO = 0) ? 0 : 1000 / TO</FormulaFrom>
        <pValue>Raw</pValue><Slope>Decreasing</Slope></Converter>
      <Float Name="Scale"><Value>0.5</Value></Float>
      <Integer Name="Raw"><pValue>RawReg</pValue><Min>10</Min><Max>100</Max></Integer>)" +
              Reg("RawReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>") +
              Reg("BinReg", "<Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode>"));
    auto* exposure = f.Get<IFloat>("Exposure");
    exposure->SetValue(20.0);
    EXPECT_EQ(f.Get<IInteger>("Raw")->GetValue(), 40);
    EXPECT_DOUBLE_EQ(exposure->GetValue(), 20.0);
    EXPECT_DOUBLE_EQ(exposure->GetMin(), 5.0);
    EXPECT_DOUBLE_EQ(exposure->GetMax(), 50.0);
    auto* inverse = f.Get<IFloat>("Inverse");
    EXPECT_DOUBLE_EQ(inverse->GetMin(), 10.0);
    EXPECT_DOUBLE_EQ(inverse->GetMax(), 100.0);
    auto* binning = f.Get<IInteger>("Binning");
    EXPECT_EQ(binning->GetValue(), 1);
    binning->SetValue(4);
    EXPECT_EQ(f.port.Peek32LittleEndian(4), 3u);
    EXPECT_THROW(f.Get<IFloat>("Exposure")->SetValue(1000.0), OutOfRangeException);
}

TEST(Values, SwissKnifeBindingsAndFaults) {
    Fixture f(R"(
      <Enumeration Name="Src"><EnumEntry Name="Off"><Value>7</Value></EnumEntry>
        <EnumEntry Name="Line1"><Value>1</Value></EnumEntry><Value>7</Value></Enumeration>
      <Integer Name="W"><Value>100</Value><Min>8</Min><Max>4000</Max><Inc>4</Inc></Integer>
      <IntSwissKnife Name="IsOff"><pVariable Name="S">Src</pVariable><pVariable Name="S.Entry.Off">Src</pVariable>
        <Formula>S = S.Entry.Off</Formula></IntSwissKnife>
      <IntSwissKnife Name="Span"><pVariable Name="W">W</pVariable><Formula>W.Max - W.Min + W.Inc + W.AccessMode</Formula></IntSwissKnife>
      <IntSwissKnife Name="Expr"><pVariable Name="W">W</pVariable><Constant Name="K">3</Constant>
        <Expression Name="HALF">W / 2</Expression><Formula>HALF * K</Formula></IntSwissKnife>
      <SwissKnife Name="Rate"><pVariable Name="P">Period</pVariable><Formula>(P &lt;&gt; 0) ? (1e6 / P) : 0</Formula></SwissKnife>
      <SwissKnife Name="Bad"><pVariable Name="P">Period</pVariable><Formula>1e6 / P</Formula></SwissKnife>
      <IntSwissKnife Name="Undeclared"><Formula>NOPE + 1</Formula></IntSwissKnife>
      <Integer Name="Period"><Value>0</Value></Integer>)");
    EXPECT_EQ(f.Get<IInteger>("IsOff")->GetValue(), 1);
    f.Get<IEnumeration>("Src")->FromString("Line1");
    EXPECT_EQ(f.Get<IInteger>("IsOff")->GetValue(), 0);
    EXPECT_EQ(f.Get<IInteger>("Span")->GetValue(), 4000 - 8 + 4 + RW);
    EXPECT_EQ(f.Get<IInteger>("Expr")->GetValue(), 150);
    EXPECT_DOUBLE_EQ(f.Get<IFloat>("Rate")->GetValue(), 0.0);
    EXPECT_THROW(f.Get<IFloat>("Bad")->GetValue(), RuntimeException);
    f.Get<IInteger>("Period")->SetValue(250);
    EXPECT_DOUBLE_EQ(f.Get<IFloat>("Bad")->GetValue(), 4000.0);
    try {
        f.Get<IInteger>("Undeclared")->GetValue();
        FAIL();
    } catch (const RuntimeException& error) {
        EXPECT_NE(std::string(error.what()).find("Undeclared"), std::string::npos);
        EXPECT_NE(std::string(error.what()).find("NOPE"), std::string::npos);
    }
    EXPECT_THROW(f.Get<IInteger>("IsOff")->SetValue(1), AccessException);
}

TEST(Values, EnumerationEntriesAndLookups) {
    Fixture f(R"(
      <Integer Name="Zero"><Value>0</Value></Integer>
      <Enumeration Name="Mode">
        <EnumEntry Name="Continuous"><Value>0</Value></EnumEntry>
        <EnumEntry Name="SingleFrame"><Value>1</Value><NumericValue>1.5</NumericValue></EnumEntry>
        <EnumEntry Name="Hidden"><pIsAvailable>Zero</pIsAvailable><Value>2</Value></EnumEntry>
        <EnumEntry Name="Absent"><pIsImplemented>Zero</pIsImplemented><Value>3</Value></EnumEntry>
        <pValue>ModeReg</pValue></Enumeration>
      <Float Name="ModeAsFloat"><pValue>Mode</pValue></Float>)" +
              Reg("ModeReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>"));
    auto* mode = f.Get<IEnumeration>("Mode");
    NodeList_t entries;
    mode->GetEntries(entries);
    ASSERT_EQ(entries.size(), 4u);
    EXPECT_EQ(entries[1]->GetName(), "EnumEntry_Mode_SingleFrame");
    StringList_t symbolics;
    mode->GetSymbolics(symbolics);
    EXPECT_EQ(symbolics, (StringList_t{"Continuous", "SingleFrame"}));
    EXPECT_EQ(mode->ToString(), "Continuous");
    mode->FromString("SingleFrame");
    EXPECT_EQ(mode->GetIntValue(), 1);
    EXPECT_EQ(mode->GetCurrentEntry()->GetSymbolic(), "SingleFrame");
    EXPECT_DOUBLE_EQ(mode->GetCurrentEntry()->GetNumericValue(), 1.5);
    EXPECT_EQ(mode->GetEntry(0)->GetSymbolic(), "Continuous");
    EXPECT_EQ(mode->GetEntry(9), nullptr);
    EXPECT_EQ(mode->GetEntryByName("Nope"), nullptr);
    EXPECT_THROW(mode->FromString("Hidden"), AccessException);
    EXPECT_THROW(mode->FromString("Nope"), InvalidArgumentException);
    EXPECT_THROW(mode->SetIntValue(3), AccessException);
    EXPECT_THROW(mode->SetIntValue(9), OutOfRangeException);
    f.port.Poke32LittleEndian(0, 9);
    f.map._InvalidateNodes();
    EXPECT_EQ(mode->GetIntValue(), 9);
    EXPECT_THROW(mode->GetCurrentEntry(), OutOfRangeException);
    // A number written through a reference picks the entry with the nearest numeric value.
    f.port.Poke32LittleEndian(0, 0);
    f.map._InvalidateNodes();
    f.Get<IFloat>("ModeAsFloat")->SetValue(1.4);
    EXPECT_EQ(mode->GetIntValue(), 1);
    EXPECT_DOUBLE_EQ(f.Get<IFloat>("ModeAsFloat")->GetValue(), 1.5);
    EXPECT_EQ(entries[3]->GetAccessMode(), NI);
    EXPECT_EQ(entries[2]->GetAccessMode(), NA);
    EXPECT_EQ(entries[0]->GetAccessMode(), RO);
}

TEST(Values, BooleanCommandAndString) {
    Fixture f(R"(
      <Boolean Name="Flag"><pValue>FlagReg</pValue><OnValue>123</OnValue><OffValue>321</OffValue></Boolean>
      <Boolean Name="Local"><Value>true</Value></Boolean>
      <Command Name="Start"><pValue>CmdReg</pValue><CommandValue>1</CommandValue></Command>
      <Command Name="Reset"><pValue>WoReg</pValue><pCommandValue>ResetCode</pCommandValue></Command>
      <Integer Name="ResetCode"><Value>0xCAFE</Value></Integer>
      <String Name="Label"><Value>hello</Value></String>
      <String Name="Alias"><pValue>Vendor</pValue></String>)" +
              Reg("FlagReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>") +
              Reg("CmdReg",
                  "<Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<Cachable>NoCache</Cachable>") +
              Reg("WoReg", "<Address>8</Address><Length>4</Length><AccessMode>WO</AccessMode>") +
              Reg("Vendor", "<Address>0x48</Address><Length>8</Length><AccessMode>RW</AccessMode>",
                  "StringReg"));
    auto* flag = f.Get<IBoolean>("Flag");
    EXPECT_THROW(flag->GetValue(), RuntimeException);  // 0 is neither 123 nor 321
    flag->SetValue(true);
    EXPECT_EQ(f.port.Peek32LittleEndian(0), 123u);
    EXPECT_TRUE(flag->GetValue());
    flag->SetValue(false);
    EXPECT_FALSE(flag->GetValue());
    auto* local = f.Get<IBoolean>("Local");
    EXPECT_TRUE(local->GetValue());
    local->FromString("0");
    EXPECT_EQ(local->ToString(), "0");

    auto* start = f.Get<ICommand>("Start");
    start->Execute();
    EXPECT_EQ(f.port.Peek32LittleEndian(4), 1u);
    EXPECT_FALSE(start->IsDone());
    f.port.Poke32LittleEndian(4, 0);  // the device finished
    EXPECT_TRUE(start->IsDone());
    auto* reset = f.Get<ICommand>("Reset");
    reset->Execute();
    EXPECT_EQ(f.port.Peek32LittleEndian(8), 0xCAFEu);
    EXPECT_TRUE(reset->IsDone());  // a write-only target is always done

    auto* alias = f.Get<IString>("Alias");
    alias->SetValue("Lumen");
    EXPECT_EQ(f.Get<IString>("Vendor")->GetValue(), "Lumen");
    alias->SetValue("12345678");  // exactly the length: no terminator
    EXPECT_EQ(alias->GetValue(), "12345678");
    EXPECT_THROW(alias->SetValue("123456789"), OutOfRangeException);
    EXPECT_EQ(alias->GetMaxLength(), 8);
    EXPECT_EQ(f.Get<IString>("Label")->GetValue(), "hello");
}

TEST(Values, DeviceErrorAfterWriteIsThrownWithItsEntry) {
    // The error register is volatile: the device sets it in answer to the write.
    Fixture f(R"(
      <Command Name="Save"><pValue>SaveReg</pValue><CommandValue>1</CommandValue>
        <pError>SaveError</pError></Command>
      <Integer Name="Gain"><pValue>GainReg</pValue><pError>SaveError</pError></Integer>
      <Enumeration Name="SaveError"><pValue>ErrorReg</pValue>
        <EnumEntry Name="NoError"><Value>0</Value></EnumEntry>
        <EnumEntry Name="StorageFull"><Value>3</Value></EnumEntry></Enumeration>)" +
              Reg("SaveReg", "<Address>0</Address><Length>4</Length><AccessMode>RW</AccessMode>") +
              Reg("GainReg", "<Address>4</Address><Length>4</Length><AccessMode>RW</AccessMode>") +
              Reg("ErrorReg",
                  "<Address>8</Address><Length>4</Length><AccessMode>RO</AccessMode>"
                  "<Cachable>NoCache</Cachable>"));
    f.Get<ICommand>("Save")->Execute();  // error register reads NoError
    f.port.onWrite = [&](int64_t address, int64_t) {
        f.port.Poke32LittleEndian(8, address == 0 ? 3 : 7);
    };
    try {
        f.Get<ICommand>("Save")->Execute();
        FAIL() << "the device's error went unreported";
    } catch (const RuntimeException& error) {
        EXPECT_NE(std::string(error.what()).find("StorageFull"), std::string::npos) << error.what();
        EXPECT_NE(std::string(error.what()).find("Save"), std::string::npos) << error.what();
    }
    // A code without an entry still fails the write; the value did reach the device.
    EXPECT_THROW(f.Get<IInteger>("Gain")->SetValue(5), RuntimeException);
    EXPECT_EQ(f.port.Peek32LittleEndian(4), 5u);
}

TEST(Values, IndexedTableAndFloatRegister) {
    Fixture f(R"(
      <Integer Name="Sel"><Value>0</Value></Integer>
      <Float Name="Gain"><pIndex>Sel</pIndex><ValueIndexed Index="0">1.5</ValueIndexed>
        <pValueIndexed Index="0x1">GainReg</pValueIndexed><ValueDefault>9</ValueDefault></Float>)" +
              Reg("GainReg",
                  "<Address>0x10</Address><Length>4</Length><AccessMode>RW</AccessMode>"
                  "<Endianess>BigEndian</Endianess>",
                  "FloatReg") +
              Reg("Bad", "<Address>0x20</Address><Length>2</Length><AccessMode>RW</AccessMode>",
                  "FloatReg"));
    auto* gain = f.Get<IFloat>("Gain");
    auto* sel = f.Get<IInteger>("Sel");
    EXPECT_DOUBLE_EQ(gain->GetValue(), 1.5);
    gain->SetValue(2.5);  // stored in the constant row
    EXPECT_DOUBLE_EQ(gain->GetValue(), 2.5);
    sel->SetValue(1);
    gain->SetValue(0.25);
    EXPECT_EQ(f.port.Peek32BigEndian(0x10), 0x3E800000u);
    EXPECT_DOUBLE_EQ(gain->GetValue(), 0.25);
    sel->SetValue(5);
    EXPECT_DOUBLE_EQ(gain->GetValue(), 9.0);
    EXPECT_THROW(f.Get<IFloat>("Bad")->GetValue(), RuntimeException);
}

}  // namespace
}  // namespace RyGenApi::testing

// The kernel's power supply class as Linux shows it, read from folders and listings made for the purpose.
#include "posix/PowerSupply.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "norv/platform/PowerSupplyPlatform.h"
#include "posix/SupplyFolder.h"
#include "posix/SupplyListing.h"

namespace norv::test {
namespace {

namespace fs = std::filesystem;
using platform::CapacityUnit;
using platform::ChargeState;
using platform::Platform;
using platform::PowerSupplyPlatform;
using platform::SystemBattery;
using platform::posix::AttributeReader;
using platform::posix::ReadBattery;
using platform::posix::SupplyClass;
using platform::posix::SupplyFolder;
using platform::posix::SupplyListing;
using testing::ElementsAre;
using testing::IsEmpty;

using Attributes = std::map<std::string, std::string>;

// The batteries by their names, in the order of the slots.
std::vector<std::string> NamesOf(const SupplyClass& supplies) {
  std::vector<std::string> names;
  for (std::uint32_t slot = 0; const auto battery = ReadBattery(supplies, slot); ++slot) {
    names.push_back(battery->deviceName);
  }
  return names;
}

// A folder of which one attribute is answered by functions, one after another; the last answer stays.
class AnsweredFolder : public SupplyFolder {
 public:
  using Answers = std::vector<std::function<std::string()>>;

  AnsweredFolder(const std::string& path, std::string attribute, Answers answers)
      : SupplyFolder(path), attribute_(std::move(attribute)), answers_(std::move(answers)) {}

  AttributeReader Open(const std::string& name) const override {
    return [this, read = SupplyFolder::Open(name)](const char* attribute) {
      return attribute == attribute_ ? std::optional(Answer()) : read(attribute);
    };
  }

 private:
  std::string Answer() const {
    if (asked_ < answers_.size()) {
      answer_ = answers_[asked_++]();
    }
    return answer_;
  }

  std::string attribute_;
  Answers answers_;
  mutable std::size_t asked_ = 0;
  mutable std::string answer_;
};

class PowerSupplyFolder : public testing::Test {
 protected:
  PowerSupplyFolder() {
    std::string pattern = (fs::temp_directory_path() / "norv-battery-XXXXXX").string();
    folder_ = ::mkdtemp(pattern.data());
  }
  ~PowerSupplyFolder() override { fs::remove_all(folder_); }

  void Write(const std::string& supply, const Attributes& attributes) const {
    fs::create_directories(folder_ / supply);
    for (const auto& [name, value] : attributes) {
      std::ofstream(folder_ / supply / name) << value << '\n';
    }
  }

  void WriteBattery(const std::string& supply, Attributes attributes = {}) const {
    attributes.emplace("type", "Battery");
    attributes.emplace("model_name", supply);
    Write(supply, attributes);
  }

  std::optional<SystemBattery> Read(std::uint32_t slot = 0) const {
    return ReadBattery(SupplyFolder(folder_.string()), slot);
  }
  std::vector<std::string> Names() const { return NamesOf(SupplyFolder(folder_.string())); }

  std::optional<SystemBattery> ReadWhile(const std::string& attribute, const AnsweredFolder::Answers& answers) const {
    return ReadBattery(AnsweredFolder(folder_.string(), attribute, answers), 0);
  }

  fs::path folder_;
};

TEST_F(PowerSupplyFolder, MayBeMissingOrEmpty) {
  EXPECT_THAT(Names(), IsEmpty());
  fs::remove(folder_);
  EXPECT_THAT(Names(), IsEmpty());
  std::ofstream(folder_) << "no folder";
  EXPECT_THAT(Names(), IsEmpty());
}

TEST_F(PowerSupplyFolder, GivesBatteriesInTheNaturalOrderOfTheirNames) {
  for (const char* name : {"BAT10", "BAT2", "CMB0", "BAT02", "BAT1", "BAT", "BATC", "BAT1x"}) {
    WriteBattery(name);
  }
  EXPECT_THAT(Names(), ElementsAre("BAT", "BAT1", "BAT1x", "BAT2", "BAT02", "BAT10", "BATC", "CMB0"));
}

TEST_F(PowerSupplyFolder, GivesOnlyBatteriesThatPowerTheSystem) {
  Write("AC", {{"type", "Mains"}, {"online", "1"}});
  Write("ups", {{"type", "UPS"}, {"model_name", "UPS"}});
  WriteBattery("BAT0", {{"present", "0"}});
  WriteBattery("BAT1", {{"present", "1"}});
  WriteBattery("BAT2", {{"scope", "System"}});
  WriteBattery("mouse", {{"scope", "Device"}, {"present", "1"}});
  Write("nothing", {});
  std::ofstream(folder_ / "file") << "Battery\n";
  EXPECT_THAT(Names(), ElementsAre("BAT1", "BAT2"));
}

TEST_F(PowerSupplyFolder, TellsNothingOfABatteryWithoutAttributes) {
  Write("BAT0", {{"type", "Battery"}});
  const auto battery = Read();
  ASSERT_TRUE(battery.has_value());
  EXPECT_FALSE(battery->designCapacity || battery->fullChargeCapacity || battery->remainingCapacity);
  EXPECT_FALSE(battery->cycleCount || battery->temperature || battery->voltage || battery->designVoltage);
  EXPECT_FALSE(battery->current || battery->power || battery->state || battery->manufactureDate);
  EXPECT_FALSE(battery->stateOfCharge);
  EXPECT_EQ(battery->serialNumber + battery->manufacturer + battery->deviceName, "");
}

TEST_F(PowerSupplyFolder, TellsEveryAttributeInItsUnit) {
  WriteBattery("BAT0", {{"charge_full_design", "4545499"},
                        {"charge_full", "4397500"},
                        {"charge_now", "4310000"},
                        {"cycle_count", "87"},
                        {"temp", "249"},
                        {"voltage_now", "12714000"},
                        {"voltage_min_design", "11550000"},
                        {"voltage_max_design", "13200000"},
                        {"current_now", "-949500"},
                        {"power_now", "-12072499"},
                        {"status", "Discharging"},
                        {"capacity", "98"},
                        {"manufacture_year", "2022"},
                        {"manufacture_month", "9"},
                        {"manufacture_day", "12"},
                        {"serial_number", " 4711 "},
                        {"manufacturer", "Quell"},
                        {"model_name", "QB 3"}});
  const auto battery = Read();
  ASSERT_TRUE(battery.has_value());
  EXPECT_EQ(battery->designCapacity->amount, 4545);
  EXPECT_EQ(battery->fullChargeCapacity->amount, 4398);
  EXPECT_EQ(battery->remainingCapacity->amount, 4310);
  EXPECT_EQ(battery->remainingCapacity->unit, CapacityUnit::MilliampereHours);
  EXPECT_EQ(battery->cycleCount, 87);
  EXPECT_EQ(battery->temperature, 2981);
  EXPECT_EQ(battery->voltage, 12714);
  EXPECT_EQ(battery->designVoltage, 11550);
  EXPECT_EQ(battery->current, -950);
  EXPECT_EQ(battery->power, -12072);
  EXPECT_EQ(battery->state, ChargeState::Discharging);
  EXPECT_EQ(battery->stateOfCharge, 98U);
  ASSERT_TRUE(battery->manufactureDate.has_value());
  EXPECT_EQ(battery->manufactureDate->year, 2022);
  EXPECT_EQ(battery->manufactureDate->month, 9);
  EXPECT_EQ(battery->manufactureDate->day, 12);
  EXPECT_EQ(battery->serialNumber, "4711");
  EXPECT_EQ(battery->manufacturer, "Quell");
  EXPECT_EQ(battery->deviceName, "QB 3");
}

TEST_F(PowerSupplyFolder, TakesEnergyWhereThereIsNoCharge) {
  WriteBattery("BAT0", {{"energy_full_design", "50000000"}, {"energy_full", "47500500"}, {"charge_full", "4000000"}});
  const auto battery = Read();
  ASSERT_TRUE(battery.has_value());
  EXPECT_EQ(battery->designCapacity->amount, 50000);
  EXPECT_EQ(battery->designCapacity->unit, CapacityUnit::MilliwattHours);
  EXPECT_EQ(battery->fullChargeCapacity->amount, 4000);
  EXPECT_EQ(battery->fullChargeCapacity->unit, CapacityUnit::MilliampereHours);
  EXPECT_FALSE(battery->remainingCapacity.has_value());
}

TEST_F(PowerSupplyFolder, KnowsTheStates) {
  const std::map<std::string, std::optional<ChargeState>> states{
      {"Charging", ChargeState::Charging}, {"Discharging", ChargeState::Discharging},
      {"Full", ChargeState::Full},         {"Not charging", ChargeState::NotCharging},
      {"Unknown", std::nullopt},           {"", std::nullopt}};
  for (const auto& [status, state] : states) {
    WriteBattery("BAT0", {{"status", status}});
    EXPECT_EQ(Read()->state, state) << status;
  }
}

TEST_F(PowerSupplyFolder, TakesNoNumberThatIsNotWhole) {
  for (const char* text : {"", "x", "12x", "1.5", "0x10", "9223372036854775808", "--1"}) {
    WriteBattery("BAT0", {{"cycle_count", text}, {"voltage_now", text}, {"capacity", text}});
    EXPECT_FALSE(Read()->cycleCount.has_value()) << text;
    EXPECT_FALSE(Read()->voltage.has_value()) << text;
    EXPECT_FALSE(Read()->stateOfCharge.has_value()) << text;
  }
  WriteBattery("BAT0", {{"capacity", "-1"}, {"temp", "9223372036854775807"}});
  EXPECT_FALSE(Read()->stateOfCharge.has_value());
  EXPECT_EQ(Read()->temperature, 9223372036854775807);
  WriteBattery("BAT0", {{"capacity", "4294967296"}, {"temp", "-2732"}});
  EXPECT_FALSE(Read()->stateOfCharge.has_value());
  EXPECT_EQ(Read()->temperature, 0);
}

TEST_F(PowerSupplyFolder, TakesTheYear0ForADateThatIsNotKnown) {
  WriteBattery("BAT0", {{"manufacture_year", "0"}, {"manufacture_month", "1"}, {"manufacture_day", "1"}});
  EXPECT_FALSE(Read()->manufactureDate.has_value());
  WriteBattery("BAT0", {{"manufacture_year", "2020"}, {"manufacture_month", "9999999999"}, {"manufacture_day", "-7"}});
  EXPECT_EQ(Read()->manufactureDate->month, 9999);
  EXPECT_EQ(Read()->manufactureDate->day, -1);
}

TEST_F(PowerSupplyFolder, AnAttributeThatIsNoOrdinaryFileIsNotKnown) {
  WriteBattery("BAT0", {{"cycle_count", "5"}, {"serial_number", "7"}});
  fs::create_directory(folder_ / "BAT0" / "voltage_now");
  ASSERT_EQ(::mkfifo((folder_ / "BAT0" / "capacity").c_str(), 0600), 0);
  fs::create_symlink("serial_number", folder_ / "BAT0" / "manufacturer");
  fs::create_symlink("/dev/zero", folder_ / "BAT0" / "power_now");
  std::ofstream(folder_ / "BAT0" / "temp") << std::string(5000, '1');
  const auto battery = Read();
  ASSERT_TRUE(battery.has_value());
  EXPECT_FALSE(battery->voltage || battery->stateOfCharge || battery->temperature || battery->power);
  EXPECT_EQ(battery->manufacturer, "");
  EXPECT_EQ(battery->serialNumber, "7");
  EXPECT_EQ(battery->cycleCount, 5);
}

TEST_F(PowerSupplyFolder, FollowsLinksWithinItselfOnly) {
  WriteBattery("class/devices/inside");
  WriteBattery("outside");
  fs::create_symlink("devices/inside", folder_ / "class" / "BAT0");
  fs::create_symlink("../outside", folder_ / "class" / "BAT1");
  fs::create_symlink(folder_ / "outside", folder_ / "class" / "BAT2");
  EXPECT_THAT(NamesOf(SupplyFolder((folder_ / "class").string())), ElementsAre("class/devices/inside"));
}

TEST_F(PowerSupplyFolder, OfMoreEntriesThanAMachineHasSuppliesIsNone) {
  WriteBattery("BAT0");
  for (int index = 1; index < 1024; ++index) {
    std::ofstream(folder_ / std::to_string(index));
  }
  EXPECT_TRUE(Read().has_value());
  std::ofstream(folder_ / "one more").close();
  EXPECT_FALSE(Read().has_value());
}

TEST_F(PowerSupplyFolder, ReadsAgainWhereTheStateChangedMeanwhile) {
  WriteBattery("BAT0", {{"current_now", "1500000"}});
  const auto text = [](const char* status) { return [status] { return std::string(status); }; };
  const auto battery =
      ReadWhile("status", {text("Discharging\n"), text("Charging\n"), text("Charging\n"), text("Charging\n")});
  ASSERT_TRUE(battery.has_value());
  EXPECT_EQ(battery->state, ChargeState::Charging);
}

TEST_F(PowerSupplyFolder, ABatteryThatIsExchangedMeanwhileIsReadAgain) {
  WriteBattery("BAT0", {{"serial_number", "1"}, {"charge_full", "1000000"}, {"charge_now", "1000000"}});
  const auto exchange = [this] {
    Write("BAT0", {{"serial_number", "2"}, {"charge_full", "2000000"}});
    return std::string("500000\n");
  };
  const auto battery = ReadWhile("charge_now", {exchange, [] { return std::string("2000000\n"); }});
  ASSERT_TRUE(battery.has_value());
  EXPECT_EQ(battery->serialNumber, "2");
  EXPECT_EQ(battery->fullChargeCapacity->amount, 2000);
  EXPECT_EQ(battery->remainingCapacity->amount, 2000);
}

TEST_F(PowerSupplyFolder, ABatteryThatGoesWhileItIsReadIsNone) {
  WriteBattery("BAT0", {{"cycle_count", "1"}});
  EXPECT_FALSE(ReadWhile("voltage_now", {[this] {
                           fs::remove_all(folder_ / "BAT0");
                           return std::string("12000000\n");
                         }})
                   .has_value());
  WriteBattery("BAT0", {{"present", "1"}});
  EXPECT_FALSE(ReadWhile("voltage_now", {[this] {
                           Write("BAT0", {{"present", "0"}});
                           return std::string("0\n");
                         }})
                   .has_value());
}

TEST_F(PowerSupplyFolder, TheNextBatteryTakesThePlaceOfOneThatGoes) {
  WriteBattery("BAT0");
  WriteBattery("BAT1", {{"cycle_count", "300"}});
  const auto battery = ReadWhile("voltage_now", {[this] {
                                   fs::remove_all(folder_ / "BAT0");
                                   return std::string("12000000\n");
                                 }});
  ASSERT_TRUE(battery.has_value());
  EXPECT_EQ(battery->deviceName, "BAT1");
  EXPECT_EQ(battery->cycleCount, 300);
}

TEST_F(PowerSupplyFolder, ABatteryThatNeverRestsIsNone) {
  WriteBattery("BAT0");
  int count = 0;
  const auto another = [&count] { return std::to_string(++count) + "\n"; };
  EXPECT_FALSE(ReadWhile("serial_number", AnsweredFolder::Answers(10, another)).has_value());
  EXPECT_EQ(count, 10) << "five attempts";
}

TEST_F(PowerSupplyFolder, StandsBehindAPlatform) {
  WriteBattery("BAT0", {{"capacity", "77"}, {"cycle_count", "300"}});
  WriteBattery("BAT1");
  PowerSupplyPlatform machine(Platform::Current(), folder_.string());
  std::array<unsigned char, 128> input{};
  std::array<unsigned char, 128> output{};
  std::uint32_t returnCode = 99;
  EXPECT_EQ(machine.SendBiosCommand(1, 7, 1, input.data(), 128, output.data(), &returnCode), 0);
  EXPECT_EQ(returnCode, 0U);
  EXPECT_EQ(output[8] + 256 * output[9], 300);
  EXPECT_EQ(std::string(output.begin() + 0x4F, output.begin() + 0x53), "BAT0");
  EXPECT_EQ(machine.BatterySource(), "the system's battery driver");
  EXPECT_EQ(machine.DriverStateOfCharge(0), 77U);
  EXPECT_EQ(machine.DriverStateOfCharge(1), std::nullopt) << "its driver gives none";
  EXPECT_EQ(machine.DriverStateOfCharge(2), std::nullopt) << "no battery";
}

// The fields by the first byte of their place.
bool IsTold(const platform::SlotDescription& description, std::size_t place) {
  return description.told[place];
}

TEST_F(PowerSupplyFolder, TellsOfASlotWhatItsDriverTold) {
  WriteBattery("BAT0", {{"energy_full_design", "50050000"},
                        {"energy_full", "44110000"},
                        {"energy_now", "0"},
                        {"power_now", "9874000"},
                        {"status", "Discharging"},
                        {"voltage_now", "11234000"},
                        {"capacity", "1"},
                        {"technology", "Li-poly"},
                        {"manufacturer", "A manufacturer of a long name"},
                        {"serial_number", "  0123456789012345678901  "},
                        {"model_name", "DELTA 45N1234567"}});
  WriteBattery("BAT1", {{"charge_now", "4000000"}, {"technology", "Unknown"}, {"cycle_count", "0"}});
  PowerSupplyPlatform machine(Platform::Current(), folder_.string());
  const platform::SlotDescription energy = machine.DescribeSlot(0);
  EXPECT_EQ(energy.source, "the system's battery driver");
  EXPECT_EQ(energy.stateOfCharge, 1U);
  EXPECT_EQ(energy.technology, "Li-poly");
  EXPECT_EQ(energy.manufacturer, "A manufacturer of a long name");
  EXPECT_EQ(energy.serialNumber, "0123456789012345678901");
  EXPECT_EQ(energy.modelName, "DELTA 45N1234567");
  EXPECT_EQ(energy.designEnergy, 50050);
  EXPECT_EQ(energy.fullChargeEnergy, 44110);
  EXPECT_EQ(energy.remainingEnergy, 0);
  EXPECT_EQ(energy.power, -9874) << "negative, as the current, while it discharges";
  EXPECT_FALSE(IsTold(energy, 0x00)) << "no charge follows from the energy without a design voltage";
  EXPECT_TRUE(IsTold(energy, 0x0C) && IsTold(energy, 0x0D)) << "voltage";
  EXPECT_TRUE(IsTold(energy, 0x0E)) << "current";
  EXPECT_TRUE(IsTold(energy, 0x12)) << "status";
  EXPECT_TRUE(IsTold(energy, 0x1C) && IsTold(energy, 0x2B)) << "serial number, to its end";
  const platform::SlotDescription charge = machine.DescribeSlot(1);
  EXPECT_EQ(charge.technology, "");
  EXPECT_EQ(charge.remainingEnergy, std::nullopt);
  EXPECT_EQ(charge.power, std::nullopt);
  EXPECT_TRUE(IsTold(charge, 0x04) && IsTold(charge, 0x05)) << "remaining capacity";
  EXPECT_TRUE(IsTold(charge, 0x08)) << "a cycle count of 0 is told, too";
  EXPECT_FALSE(IsTold(charge, 0x00) || IsTold(charge, 0x0A) || IsTold(charge, 0x14)) << "and nothing else is";
  EXPECT_TRUE(machine.DescribeSlot(2).told.none()) << "no battery";
}

// The value that a listing gives for an attribute of BAT0.
std::optional<std::string> Listed(const std::string& text, const char* attribute = "capacity") {
  return SupplyListing(text).Open("BAT0")(attribute);
}

TEST(PowerSupplyListing, IsReadLikeAFolder) {
  const SupplyListing listing(
      "# a notebook\n"
      "BAT10/type:Battery\nBAT10/model_name:ten\n"
      "AC/type:Mains\n"
      "BAT2/type: Battery \nBAT2/model_name:two\nBAT2/cycle_count:7\n");
  EXPECT_EQ(listing.Defect(), std::nullopt);
  EXPECT_THAT(NamesOf(listing), ElementsAre("two", "ten"));
  EXPECT_EQ(ReadBattery(listing, 0)->cycleCount, 7);
  EXPECT_EQ(ReadBattery(listing, 0)->temperature, std::nullopt);
  EXPECT_FALSE(listing.Open("BAT3")("type").has_value());
}

TEST(PowerSupplyListing, TakesAPathWithAndWithoutItsFolder) {
  for (const char* folder :
       {"", "./", "power_supply/", "./power_supply/", "copied/power_supply/", "/sys/class/power_supply/",
        "/sys/devices/LNXSYSTM:00/LNXSYBUS:00/PNP0A08:00/PNP0C0A:00/power_supply/", "    ",
        "\t/sys/class/power_supply/"}) {
    EXPECT_EQ(Listed(folder + std::string("BAT0/capacity:97\n")), "97") << folder;
  }
}

TEST(PowerSupplyListing, TakesValuesAsTheyStand) {
  EXPECT_EQ(Listed("BAT0/capacity:97"), "97");
  EXPECT_EQ(Listed("BAT0/capacity:97\r\n"), "97");
  EXPECT_EQ(Listed("BAT0/capacity:\n"), "");
  EXPECT_EQ(Listed("BAT0/capacity: 9:7/power_supply/\xFF \n"), " 9:7/power_supply/\xFF ");
  EXPECT_EQ(Listed("BAT0/uevent:A=1\nBAT0/uevent:B=2\nBAT0/capacity:9\n", "uevent"), "A=1\nB=2");
  EXPECT_EQ(SupplyListing("ucsi-source-psy-USBC000:001/online:1").Open("ucsi-source-psy-USBC000:001")("online"), "1");
}

TEST(PowerSupplyListing, PassesOverRemarksAndDeeperFolders) {
  const char* const text =
      "\n"
      "  # comment\n"
      "grep: /sys/class/power_supply/BAT0/device: Is a directory\n"
      "grep: /sys/class/power_supply/BAT0/serial_number: binary file matches\n"
      "Binary file /sys/class/power_supply/BAT0/manufacturer matches\n"
      "/sys/class/power_supply/BAT0/power/control:auto\n"
      "/sys/class/power_supply/BAT0/capacity:97\n"
      "/sys/class/power_supply/BAT0/power/control:auto\n";
  EXPECT_EQ(SupplyListing(text).Defect(), std::nullopt);
  EXPECT_EQ(Listed(text), "97");
  EXPECT_EQ(Listed(text, "power/control"), std::nullopt);
}

TEST(PowerSupplyListing, RefusesABadLineWithItsNumber) {
  const std::string form = "expected SUPPLY/ATTRIBUTE:VALUE, such as BAT0/capacity:97";
  const std::string once = "expected each attribute once, all its lines in a row";
  std::string many;
  for (int number = 0; number <= 1024; ++number) {
    many += std::to_string(number) + "/type:Mains\n";
  }
  const std::map<std::string, std::string> refusals{
      {"capacity:97", "line 1: " + form},
      {"BAT0/capacity 97", "line 1: " + form},
      {"BAT0/capacity", "line 1: " + form},
      {"/capacity:97", "line 1: " + form},
      {"BAT0/:97", "line 1: " + form},
      {"BAT0/the capacity:97", "line 1: " + form},
      {"see BAT0/capacity:97", "line 1: " + form},
      {"# good\nBAT0/type:Battery\n\nbad\n", "line 4: " + form},
      {"BAT0/a:1\nBAT0/b:2\nBAT0/a:1\n", "line 3: " + once},
      {"BAT0/a:" + std::string(4096, '1'), "line 1: expected a value of at most 4095 bytes"},
      {"BAT0/a:" + std::string(4094, '1') + "\nBAT0/a:\nBAT0/a:", "line 3: expected a value of at most 4095 bytes"},
      {many, "line 1025: expected at most 1024 supplies"},
  };
  for (const auto& [text, refusal] : refusals) {
    const SupplyListing listing(text);
    EXPECT_EQ(listing.Defect(), refusal) << text.substr(0, 60);
    EXPECT_THAT(listing.Names(), IsEmpty());
  }
}

TEST(PowerSupplyListing, TakesWhatIsWithinItsBounds) {
  EXPECT_EQ(Listed("BAT0/capacity:" + std::string(4095, '1')), std::string(4095, '1'));
  std::string many;
  for (int number = 0; number < 1024; ++number) {
    many += std::to_string(number) + "/type:Mains\n";
  }
  EXPECT_EQ(SupplyListing(many).Names().size(), 1024U);
}

TEST_F(PowerSupplyFolder, MayBeAListingInstead) {
  const std::string file = (folder_ / "listing").string();
  PowerSupplyPlatform machine(Platform::Current(), file);
  EXPECT_EQ(machine.DriverStateOfCharge(0), std::nullopt) << "missing";
  std::ofstream(file) << "BAT0/type:Battery\nBAT0/capacity:77\n";
  EXPECT_EQ(machine.DriverStateOfCharge(0), 77U);
  EXPECT_EQ(PowerSupplyPlatform::Defect(file), std::nullopt);
  std::ofstream(file) << "BAT0/type:Battery\nBAT0/capacity:76\n";
  EXPECT_EQ(machine.DriverStateOfCharge(0), 76U) << "read anew";
  std::ofstream(file) << "BAT0/type:Battery\nbroken\n";
  EXPECT_EQ(machine.DriverStateOfCharge(0), std::nullopt);
}

TEST_F(PowerSupplyFolder, OrListingIsRefusedWithTheReason) {
  const auto defect = [this](const char* name) {
    return PowerSupplyPlatform::Defect((folder_ / name).string()).value_or("none");
  };
  const std::string expected = "; expected a folder, or a file of at most 1 MiB that is no link";
  EXPECT_EQ(defect("missing"), "cannot be read: No such file or directory" + expected);
  ASSERT_EQ(::mkfifo((folder_ / "pipe").c_str(), 0600), 0);
  EXPECT_EQ(defect("pipe"), "cannot be read: Permission denied" + expected);
  std::ofstream(folder_ / "large") << std::string((std::size_t{1} << 20U) + 1, '#');
  EXPECT_EQ(defect("large"), "cannot be read: File too large" + expected);
  fs::create_symlink("large", folder_ / "link");
  EXPECT_EQ(defect("link"), "cannot be read: Too many levels of symbolic links" + expected);
  std::ofstream(folder_ / "empty") << "# nothing\nBAT0/capacity:97\n";
  EXPECT_EQ(defect("empty"),
            "no listing of the power supply class: expected a line such as BAT0/type:Battery for each supply");
  std::ofstream(folder_ / "broken") << "BAT0/type:Battery\nbroken\n";
  EXPECT_EQ(defect("broken"), "line 2: expected SUPPLY/ATTRIBUTE:VALUE, such as BAT0/capacity:97");
  Write("class", {});
  EXPECT_EQ(defect("class"), "none") << "of a machine without a battery";
  Write("class/BAT0", {{"capacity", "97"}});
  EXPECT_EQ(defect("class"),
            "no folder of the power supply class: expected a folder with a file 'type' for each supply");
  Write("class/BAT1", {{"type", "Battery"}});
  EXPECT_EQ(defect("class"), "none");
}

}  // namespace
}  // namespace norv::test

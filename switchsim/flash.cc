#include "backend/flash.h"
#include "backend/chassis.h"
#include "switchsim/family.h"

namespace switchsim {
namespace {

struct Image {
    std::uint32_t size;
    const char *name;
    const char *version;
};

struct Partition {
    Image code, boot;
};

// What the partitions hold, and which of them runs.
class Flash : public Family {
public:
    explicit Flash(Device &device)
        : device_(device)
    {
    }

    std::string_view word() const override { return "flash"; }

    void registerCalls(CallTable &calls) override
    {
        calls.on<FlashItem, FlashItem>(
            "ui_fe_flash_item_req", flash_item__descriptor, flash_item__descriptor,
            [this](const auto &request, auto &answer, auto &answering) { read(request, answer, answering); });
    }

    Json show() const override
    {
        return {{"primary", asJson(kPrimary)},
                {"secondary", asJson(kSecondary)},
                {"running-version", running().code.version},
                {"free", kFree}};
    }

private:
    static constexpr Partition kPrimary = {{33'554'432, "LYN0901.bin", "09.0.10T211"},
                                           {786'944, "boot101.bin", "10.1.22T235"}};
    static constexpr Partition kSecondary = {{31'457'280, "LYN0895.bin", "08.0.95T211"},
                                             {786'944, "boot101.bin", "10.1.18T235"}};
    static constexpr std::uint32_t kFree = 1'073'741'824;

    static Json asJson(const Partition &partition)
    {
        const auto image = [](const Image &of) {
            return Json{{"size", of.size}, {"name", of.name}, {"version", of.version}};
        };
        return {{"code", image(partition.code)}, {"boot", image(partition.boot)}};
    }

    const Partition &running() const
    {
        return device_.boot.running == BOOT_SOURCE_SECONDARY ? kSecondary : kPrimary;
    }

    void read(const FlashItem &request, FlashItem &answer, Answering &answering) const
    {
        switch (request.flash_item) {
        case FLASH_ITEM_RUNNING:
            answer.code_version = answering.keep(running().code.version);
            return;
        case FLASH_ITEM_PRIMARY:
            return describe(kPrimary, answer, answering);
        case FLASH_ITEM_SECONDARY:
            return describe(kSecondary, answer, answering);
        case FLASH_ITEM_FREE_SPACE:
            answer.has_flash_free_space = 1;
            answer.flash_free_space = kFree;
            return;
        }
        answering.refuse("Error: unknown flash item\n");
    }

    static void describe(const Partition &partition, FlashItem &answer, Answering &answering)
    {
        answer.has_code_size = answer.has_boot_size = 1;
        answer.code_size = partition.code.size;
        answer.code_name = answering.keep(partition.code.name);
        answer.code_version = answering.keep(partition.code.version);
        answer.boot_size = partition.boot.size;
        answer.boot_name = answering.keep(partition.boot.name);
        answer.boot_version = answering.keep(partition.boot.version);
    }

    Device &device_;
};

} // namespace

std::unique_ptr<Family> makeFlash(Device &device)
{
    return std::make_unique<Flash>(device);
}

} // namespace switchsim

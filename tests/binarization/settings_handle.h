// A handle of settings that releases itself.
#pragma once

#include "vemoprepro/binarization.h"

namespace support {

class SettingsHandle {
  public:
    explicit SettingsHandle(prepro_row_reader reader) : settings_(bi_setup(reader)) {}
    ~SettingsHandle() { bi_upset(settings_); }
    SettingsHandle(const SettingsHandle&) = delete;
    SettingsHandle& operator=(const SettingsHandle&) = delete;
    operator bi_settings*() const { return settings_; }

    int smooth() const {
        unsigned char value = 0;
        bi_get_smooth(settings_, &value);
        return value;
    }

  private:
    bi_settings* settings_;
};

}  // namespace support

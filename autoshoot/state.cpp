#include "include/zavricustpro.h"

// The host sets the rectangle between calls; no lock guards it.
T_OptRect tOptRect;

namespace {

uint32_t g_auto_shoot_lock_status;
uint8_t g_auto_shdr_status;

}  // namespace

void zavri_auto_shoot_opt_set_lock_status(uint32_t status) { g_auto_shoot_lock_status = status; }

uint32_t zavri_auto_shoot_opt_get_lock_status() { return g_auto_shoot_lock_status; }

void zavri_auto_shoot_opt_set_auto_shdr_status(uint8_t status) { g_auto_shdr_status = status; }

uint8_t zavri_auto_shoot_opt_get_auto_shdr_status() { return g_auto_shdr_status; }

void zavri_auto_shoot_opt_set_FV_rect(const T_OptRect* rect) {
  if (rect != nullptr) tOptRect = *rect;
}

void zavri_auto_shoot_opt_get_FV_rect(T_OptRect* rect) {
  if (rect != nullptr) *rect = tOptRect;
}

int32_t zavri_auto_shoot_opt_get_status() { return 0; }

void zavri_auto_shoot_opt_set_status(uint32_t) {}

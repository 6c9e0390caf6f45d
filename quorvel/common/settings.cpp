#include "quorvel/common/settings.h"

namespace quorvel {

ostrevan::cfg_bool monitoring_enabled{nuv::guid_of("{9035A43F-E915-4EEC-8DF9-7920D4D2FF19}"), true};
ostrevan::cfg_bool tag_sync_enabled{nuv::guid_of("{BE5DDEBA-0A25-4AAB-B60F-B597991C582C}"), false};

}  // namespace quorvel

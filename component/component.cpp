#include "component/component.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "driver/fiscal_varlen_module2.h"
#include "facade/fiscal_null_module.h"
#include "facade/fiscal_trevik_module.h"
#include "link/network_endpoint.h"
#include "records/cls_accumulator.h"
#include "records/cls_daily_acc.h"
#include "records/cls_eft.h"
#include "records/cls_param.h"
#include "records/cls_status.h"
#include "records/cls_trans_total.h"
#include "records/clse_send_props.h"
#include "records/dec2bin.h"
#include "state/module_state.h"
#include "support/electronic_journal.h"
#include "support/price_adjustments.h"

namespace mirvane {
namespace {

template <class C>
ObjectPtr create() {
  return std::make_shared<C>();
}

template <class C>
constexpr PublicClass publicClass(std::string_view classId, std::string_view interfaceId) {
  return {&C::describe, &create<C>, classId, interfaceId};
}

// The identifiers are the component's identity on every machine. They never change; a new class gets new ones.
constexpr std::array kPublicClasses = {
    publicClass<fiscalTrevikModule>("{D724621E-6E73-420C-B7B7-2E4E1AF49484}", "{2F7C549A-C314-44E2-BC96-1118ECDCCA57}"),
    publicClass<fiscalNullModule>("{0807DACD-9DE8-4F06-8904-E9D9C0CF1873}", "{97405D5B-7DA7-4EC6-9157-F82B4EFD9F98}"),
    publicClass<clsParam>("{490B5E2E-0580-46EC-B5F1-5C0743552120}", "{B8FE70D2-3E0E-4275-9DB2-F224BE6B0233}"),
    publicClass<clsTransTotal>("{4B891620-675F-4ECC-8461-002C808E589C}", "{7229D9C8-1711-4831-8BF3-CCA6A37F7326}"),
    publicClass<clsAccumulator>("{395991CE-45E8-4259-B90B-F7BC6CDDEE39}", "{1721A198-BCD5-4853-999F-025CD954F6D5}"),
    publicClass<clsDailyAcc>("{41CEBE4A-276B-4F97-8268-1A16A24AE955}", "{FB2B25CB-7777-49D3-A543-43486DE2900B}"),
    publicClass<clsStatus>("{7D095D24-96D1-45C2-9495-D47B878889A2}", "{361F1B1A-0514-472C-984C-52EAC056A81E}"),
    publicClass<clsEFT>("{6957F71F-E3DD-42F4-8D81-F2FBD1CD7084}", "{C9081216-4F81-4D55-AD58-A2092A5946E6}"),
    publicClass<clseSendProps>("{530E2E7A-6025-4068-9298-FD73922F1BBE}", "{B4688CC9-6CB3-44AF-AB50-3D08D5977635}"),
    publicClass<cPortProp>("{70FC3462-AFF7-4EDB-99B4-B88C2FEC7F41}", "{EFC938F5-C8E5-4144-908F-04CAD7ACCC8A}"),
    publicClass<dec2Bin>("{80D8648C-B206-4396-B453-B73FEED2595C}", "{84A2769F-73A8-4648-ADBC-6F2F25A81BCF}"),
    publicClass<cTCPIP>("{8F06B02E-E8BE-4882-83C4-209E46D6F9B6}", "{48F8A3CA-682D-4C57-817D-B50FC7BF0F11}"),
    publicClass<clsAdjust>("{0A8CA803-7002-4AA9-8F9D-7DEB86745104}", "{B7B87008-F397-490A-A749-6E1F41D3327B}"),
    publicClass<FiscalJournal>("{E0492EBE-0DE7-4EE3-BF52-D89C3901E146}", "{C406E56C-58C7-44A9-A043-D062349C19B5}"),
};

}  // namespace

std::span<const PublicClass> publicClasses() { return kPublicClasses; }

ObjectPtr createObject(std::string_view className) {
  const auto nameOf = [](const PublicClass& each) { return each.describe().name(); };
  const auto* const found = std::ranges::find(kPublicClasses, className, nameOf);
  if (found == std::end(kPublicClasses)) throw std::logic_error("no public class " + std::string(className));
  return found->create();
}

void startComponent() {
  moduleState().createNullDriver = &create<fiscalNullModule>;
  // The two older families keep their places, so that a driver for one of them would be found before the newer one.
  // They have no drivers yet, and probing skips them.
  moduleState().candidates = {{FISCAL_PALKOFISCAL, "FiscalOrnaModule", nullptr},
                              {FISCAL_VARLENFISCAL, "FiscalVarlenModule", nullptr},
                              {FISCAL_VARLENFISCAL2, FiscalVarlenModule2::kName, &create<FiscalVarlenModule2>}};
}

}  // namespace mirvane

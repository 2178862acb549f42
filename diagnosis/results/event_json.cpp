#include "diagnosis/results/event_json.h"

namespace diagnosis {

void WriteFoldedEvent(JsonWriter& json, const Evidence::FoldedEvent& event)
{
    json.Text("id", event.id).Text("name", event.name).Text("kind", Evidence::TypeText(event.type));
    json.Text("gate", Evidence::GateText(event.gate)).Text("status", Evidence::StateText(event.status));
    json.Bool("observable", event.observable);
    json.Text("check", Evidence::CheckText(event.check)).Bool("restsOnDefault", event.RestsOnDefault());
}

} // namespace diagnosis

#include "chat/chatmodel.h"

#include "chat/jsonfields.h"

namespace zentrik {

std::optional<ChatModel> ChatModel::fromJson(const QJsonObject &object)
{
    using L = QLatin1StringView;
    JsonFields fields(object);
    ChatModel list;
    for (const QJsonValue value : fields.require(fields.array(L("data")))) {
        if (!value.isObject()) {
            return std::nullopt;
        }
        JsonFields entryFields(value.toObject());
        Entry entry;
        entry.id = entryFields.require(entryFields.string(L("id")));
        entry.created = entryFields.integer(L("created")).value_or(0);
        entry.object = entryFields.string(L("object")).value_or(QString());
        entry.ownedBy = entryFields.string(L("owned_by")).value_or(QString());
        if (!entryFields.ok()) {
            return std::nullopt;
        }
        list.data.append(entry);
    }
    if (!fields.ok()) {
        return std::nullopt;
    }
    return list;
}

} // namespace zentrik

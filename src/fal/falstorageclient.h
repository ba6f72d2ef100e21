#pragma once

#include "fal/falrequestsender.h"

#include <memory>

namespace zentrik::fal {

// Puts files where fal applications can read them: asks the REST host for an upload
// address, sends the bytes there and hands back the file's address for use in inputs.
class StorageClient
{
public:
    static constexpr const char *initiatePath = "/storage/upload/initiate";
    static constexpr const char *defaultContentType = "application/octet-stream";

    explicit StorageClient(std::shared_ptr<const RequestSender> sender);

    // The file's address ("file_url"), once its bytes have arrived at "upload_url".
    void upload(const QByteArray &data, const QString &contentType, const QString &fileName, QObject *context,
        const std::function<void(const Result<QString> &)> &completion) const;

    // Bytes given inline in an input instead of uploaded.
    [[nodiscard]] static QString inlineAddress(const QByteArray &data) { return Payload::dataAddress(data); }

private:
    std::shared_ptr<const RequestSender> m_sender;
};

} // namespace zentrik::fal

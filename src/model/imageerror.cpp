#include "model/imageerror.h"

#include <QCoreApplication>

namespace zentrik {

ImageError::ImageError(const fal::ClientError &error)
    : m_reason(std::visit([](const auto &reason) { return Reason(reason); }, error))
{ }

ImageError ImageError::noImageUrl()
{
    return DomainError { QString::fromLatin1(imageGenerationDomain), 0,
        QCoreApplication::translate("ImageError", "No image URL found in response") };
}

QString ImageError::message() const
{
    if (const auto *error = get<APIError>()) {
        return error->message();
    }
    if (const auto *error = get<fal::FalError>()) {
        return error->description();
    }
    if (const auto *error = get<fal::DecodingError>()) {
        return error->message;
    }
    if (const auto *error = get<TransportError>()) {
        // The same words as a failed OpenAI or Together request.
        return APIError::fromTransport(*error).message();
    }
    return std::get<DomainError>(m_reason).description;
}

} // namespace zentrik

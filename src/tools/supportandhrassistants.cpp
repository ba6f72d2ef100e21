#include "assistanttable.h"

namespace zentrik {

namespace {

using F = InputField;

AssistantTable buildCustomerSupportAgents()
{
    QList<CustomerSupportAgent> entries;

    entries.append({
        .id = QUuid::createUuid(),
        .icon = QStringLiteral("headphones"),
        .title = QStringLiteral("Customer Support Ticket Response Agent"),
        .description = QStringLiteral("AI-powered support agent to craft responses"),
        .color = QStringLiteral("indigo"),
        .inputs = {
            F::text(QStringLiteral("Customer Name"), QStringLiteral("Enter customer name")),
            F::textArea(QStringLiteral("Ticket Description"), QStringLiteral("Describe the customer issue")),
            F::select(QStringLiteral("Priority"),
                      {QStringLiteral("Low"), QStringLiteral("Medium"), QStringLiteral("High"), QStringLiteral("Urgent")}),
            F::text(QStringLiteral("Product/Service"), QStringLiteral("Specify the product or service")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Craft a professional and empathetic response to the customer support ticket."),
            .structure = {
                QStringLiteral("Start with a personalized greeting"),
                QStringLiteral("Acknowledge the issue and show empathy"),
                QStringLiteral("Provide a clear and concise solution or next steps"),
                QStringLiteral("Offer additional assistance if needed"),
                QStringLiteral("Close with a positive and professional sign-off"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a friendly yet professional tone"),
                QStringLiteral("Be empathetic to the customer's situation"),
                QStringLiteral("Use clear and simple language, avoiding jargon"),
            },
            .closing = QStringLiteral("Ensure the response addresses all aspects of the customer's issue and leaves a positive impression."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = QStringLiteral("doc.text"),
        .title = QStringLiteral("Documentation Explainer"),
        .description = QStringLiteral("Simplify complex documentation for easy understanding"),
        .color = QStringLiteral("pink"),
        .inputs = {
            F::textArea(QStringLiteral("Technical Documentation"), QStringLiteral("Paste the complex documentation here")),
            F::text(QStringLiteral("Target Audience"),
                    QStringLiteral("Describe the intended audience (e.g., beginners, advanced users)")),
            F::select(QStringLiteral("Desired Output Format"),
                      {QStringLiteral("Simplified Text"), QStringLiteral("Step-by-Step Guide"), QStringLiteral("FAQ Format")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Simplify the given technical documentation for easier understanding by the target audience."),
            .structure = {
                QStringLiteral("Summarize the main points of the documentation"),
                QStringLiteral("Break down complex concepts into simpler terms"),
                QStringLiteral("Provide examples or analogies where appropriate"),
                QStringLiteral("Create a logical flow of information"),
                QStringLiteral("Include any necessary definitions or explanations of technical terms"),
            },
            .toneGuidelines = {
                QStringLiteral("Use clear and concise language"),
                QStringLiteral("Avoid technical jargon unless absolutely necessary"),
                QStringLiteral("Maintain an instructive and helpful tone"),
            },
            .closing = QStringLiteral("Conclude with a brief summary and offer suggestions for further reading or resources if applicable."),
        },
    });

    return AssistantTable(std::move(entries));
}

AssistantTable buildHRAgents()
{
    QList<HRAgent> entries;

    entries.append({
        .id = QUuid::createUuid(),
        .icon = QStringLiteral("person.2"),
        .title = QStringLiteral("Interactive Employee Training Agent"),
        .description = QStringLiteral("Create interactive training sessions for employees"),
        .color = QStringLiteral("orange"),
        .inputs = {
            F::text(QStringLiteral("Training Topic"), QStringLiteral("Enter the main topic of the training")),
            F::select(QStringLiteral("Training Format"),
                      {QStringLiteral("Workshop"), QStringLiteral("Webinar"), QStringLiteral("E-learning Module"),
                       QStringLiteral("In-person Seminar")}),
            F::textArea(QStringLiteral("Learning Objectives"), QStringLiteral("List the main learning objectives")),
            F::text(QStringLiteral("Target Audience"), QStringLiteral("Describe the target audience")),
            F::select(QStringLiteral("Duration"),
                      {QStringLiteral("30 minutes"), QStringLiteral("1 hour"), QStringLiteral("2 hours"),
                       QStringLiteral("Half-day"), QStringLiteral("Full-day")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create an interactive employee training session outline based on the provided information."),
            .structure = {
                QStringLiteral("Develop an engaging introduction"),
                QStringLiteral("List main topics to be covered"),
                QStringLiteral("Suggest interactive activities or exercises"),
                QStringLiteral("Include discussion points or reflection questions"),
                QStringLiteral("Propose assessment methods"),
                QStringLiteral("Conclude with a summary and call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain an encouraging and motivational tone"),
                QStringLiteral("Emphasize practical applications of the training content"),
            },
            .closing = QStringLiteral("Provide suggestions for follow-up or additional resources related to the training topic."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = QStringLiteral("doc.text"),
        .title = QStringLiteral("Job Description Generator"),
        .description = QStringLiteral("Generate compelling job descriptions and postings"),
        .color = QStringLiteral("teal"),
        .inputs = {
            F::text(QStringLiteral("Job Title"), QStringLiteral("Enter the job title")),
            F::textArea(QStringLiteral("Key Responsibilities"), QStringLiteral("List the main responsibilities of the role")),
            F::textArea(QStringLiteral("Required Qualifications"), QStringLiteral("List required qualifications and skills")),
            F::text(QStringLiteral("Department"), QStringLiteral("Enter the department name")),
            F::select(QStringLiteral("Experience Level"),
                      {QStringLiteral("Entry-level"), QStringLiteral("Mid-level"), QStringLiteral("Senior"),
                       QStringLiteral("Executive")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create a compelling job description and posting based on the provided information."),
            .structure = {
                QStringLiteral("Craft an attention-grabbing job title and summary"),
                QStringLiteral("Detail key responsibilities and duties"),
                QStringLiteral("List required qualifications and skills"),
                QStringLiteral("Describe the ideal candidate profile"),
                QStringLiteral("Include information about the company and culture"),
                QStringLiteral("Specify application instructions and deadline"),
            },
            .toneGuidelines = {
                QStringLiteral("Use clear and professional language"),
                QStringLiteral("Highlight the unique aspects of the role and company"),
                QStringLiteral("Maintain an inclusive and welcoming tone"),
            },
            .closing = QStringLiteral("End with a call-to-action encouraging qualified candidates to apply."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = QStringLiteral("list.clipboard"),
        .title = QStringLiteral("Employee Survey Generator"),
        .description = QStringLiteral("Create effective surveys to gather employee feedback"),
        .color = QStringLiteral("cyan"),
        .inputs = {
            F::text(QStringLiteral("Survey Purpose"), QStringLiteral("Enter the main purpose of the survey")),
            F::select(QStringLiteral("Survey Type"),
                      {QStringLiteral("Engagement"), QStringLiteral("Satisfaction"), QStringLiteral("Onboarding"),
                       QStringLiteral("Exit"), QStringLiteral("Pulse")}),
            F::textArea(QStringLiteral("Key Areas to Assess"), QStringLiteral("List the main areas you want to assess")),
            F::select(QStringLiteral("Survey Length"),
                      {QStringLiteral("Short (5-10 questions)"), QStringLiteral("Medium (11-20 questions)"),
                       QStringLiteral("Long (21+ questions)")}),
            F::text(QStringLiteral("Target Respondents"), QStringLiteral("Describe the target respondents")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Generate an effective employee survey based on the provided information."),
            .structure = {
                QStringLiteral("Create an introduction explaining the survey's purpose"),
                QStringLiteral("Develop questions for each key area to assess"),
                QStringLiteral("Include a mix of question types (multiple choice, rating scales, open-ended)"),
                QStringLiteral("Organize questions in a logical flow"),
                QStringLiteral("Add demographic questions if necessary"),
                QStringLiteral("Conclude with a thank you message and next steps"),
            },
            .toneGuidelines = {
                QStringLiteral("Use clear and unbiased language"),
                QStringLiteral("Maintain a professional and respectful tone"),
                QStringLiteral("Ensure questions are specific and actionable"),
            },
            .closing = QStringLiteral("Provide suggestions for survey distribution and follow-up actions."),
        },
    });

    return AssistantTable(std::move(entries));
}

} // namespace

const AssistantTable &customerSupportAgents()
{
    static const AssistantTable table = buildCustomerSupportAgents();
    return table;
}

const AssistantTable &hrAgents()
{
    static const AssistantTable table = buildHRAgents();
    return table;
}

} // namespace zentrik

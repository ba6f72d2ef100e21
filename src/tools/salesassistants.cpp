#include "assistanttable.h"

namespace zentrik {

namespace {

using F = InputField;

AssistantTable buildSalesAssistants()
{
    QList<FormAssistant> entries;

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Persuasive Sales Copy"),
        .description = QStringLiteral("Craft compelling sales copy that converts prospects into customers"),
        .color = QStringLiteral("blue"),
        .inputs = {
            F::text(QStringLiteral("Product/Service Name"), QStringLiteral("Enter the name of your product or service")),
            F::textArea(QStringLiteral("Key Features"), QStringLiteral("List the main features and benefits")),
            F::text(QStringLiteral("Target Audience"), QStringLiteral("Describe your ideal customer")),
            F::select(QStringLiteral("Tone"),
                      {QStringLiteral("Professional"), QStringLiteral("Conversational"), QStringLiteral("Urgent"),
                       QStringLiteral("Luxurious")}),
            F::textArea(QStringLiteral("Unique Selling Proposition"), QStringLiteral("What sets your offering apart?")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create persuasive sales copy that highlights the unique value of the product or service."),
            .structure = {
                QStringLiteral("Craft an attention-grabbing headline"),
                QStringLiteral("Open with a compelling hook or pain point"),
                QStringLiteral("Describe the product/service and its key benefits"),
                QStringLiteral("Present social proof or testimonials"),
                QStringLiteral("Address potential objections"),
                QStringLiteral("Include a strong call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Use vivid, benefit-focused language"),
                QStringLiteral("Create a sense of urgency or exclusivity"),
                QStringLiteral("Maintain a confident and authoritative tone"),
            },
            .closing = QStringLiteral("Conclude with a powerful statement that reinforces the value and motivates immediate action."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Customized Sales Pitch"),
        .description = QStringLiteral("Generate tailored sales pitches that resonate with your specific prospects"),
        .color = QStringLiteral("green"),
        .inputs = {
            F::text(QStringLiteral("Prospect Name"), QStringLiteral("Enter the prospect's name")),
            F::textArea(QStringLiteral("Prospect Information"), QStringLiteral("Describe the prospect's business and needs")),
            F::text(QStringLiteral("Your Solution"), QStringLiteral("Briefly describe your product/service")),
            F::select(QStringLiteral("Pitch Style"),
                      {QStringLiteral("Problem-Solution"), QStringLiteral("Story-based"), QStringLiteral("Demo-focused"),
                       QStringLiteral("ROI-centric")}),
            F::textArea(QStringLiteral("Key Differentiators"), QStringLiteral("What makes your solution unique?")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Craft a personalized sales pitch tailored to the specific prospect and their needs."),
            .structure = {
                QStringLiteral("Start with a personalized opening that shows understanding of the prospect's situation"),
                QStringLiteral("Present the main problem or opportunity relevant to the prospect"),
                QStringLiteral("Introduce your solution and its key benefits for the prospect"),
                QStringLiteral("Provide evidence of success or social proof"),
                QStringLiteral("Address potential concerns preemptively"),
                QStringLiteral("Close with a clear next step or call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Use a conversational yet professional tone"),
                QStringLiteral("Demonstrate deep understanding of the prospect's industry and challenges"),
                QStringLiteral("Focus on value and outcomes rather than features"),
            },
            .closing = QStringLiteral("End with a question or statement that encourages further dialogue and moves the sale forward."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Objection Handling Scripts"),
        .description = QStringLiteral("Create effective responses to common sales objections"),
        .color = QStringLiteral("orange"),
        .inputs = {
            F::select(QStringLiteral("Objection Type"),
                      {QStringLiteral("Price"), QStringLiteral("Timing"), QStringLiteral("Competition"),
                       QStringLiteral("No need"), QStringLiteral("Decision maker")}),
            F::textArea(QStringLiteral("Specific Objection"), QStringLiteral("Enter the exact objection you're addressing")),
            F::text(QStringLiteral("Product/Service"), QStringLiteral("Your product or service name")),
            F::select(QStringLiteral("Approach"),
                      {QStringLiteral("Feel, Felt, Found"), QStringLiteral("Probing Questions"), QStringLiteral("Reframe"),
                       QStringLiteral("Agree and Redirect")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Develop effective scripts to handle common sales objections and turn them into opportunities."),
            .structure = {
                QStringLiteral("Acknowledge the objection empathetically"),
                QStringLiteral("Probe deeper to understand the root concern"),
                QStringLiteral("Present a counter-argument or reframe the objection"),
                QStringLiteral("Provide evidence or examples to support your position"),
                QStringLiteral("Gain agreement and move the conversation forward"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a calm and confident tone"),
                QStringLiteral("Use active listening techniques in your responses"),
                QStringLiteral("Be persuasive without being pushy"),
            },
            .closing = QStringLiteral("Conclude with a statement that reinforces your solution's value and encourages moving forward."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Follow-up Email Sequence"),
        .description = QStringLiteral("Generate a series of follow-up emails to nurture leads and close deals"),
        .color = QStringLiteral("purple"),
        .inputs = {
            F::text(QStringLiteral("Prospect Name")),
            F::textArea(QStringLiteral("Initial Interaction Summary"), QStringLiteral("Briefly describe your last interaction")),
            F::select(QStringLiteral("Sequence Length"),
                      {QStringLiteral("3 Emails"), QStringLiteral("5 Emails"), QStringLiteral("7 Emails")}),
            F::text(QStringLiteral("Product/Service")),
            F::textArea(QStringLiteral("Key Value Propositions"), QStringLiteral("List main benefits for the prospect")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create a strategic sequence of follow-up emails to nurture the prospect and move them towards a sale."),
            // Always five emails whatever the chosen length; the length still reaches the
            // model through its input line.
            .structure = {
                QStringLiteral("Email 1: Recap of initial interaction and value proposition"),
                QStringLiteral("Email 2: Share relevant case study or success story"),
                QStringLiteral("Email 3: Provide additional value (e.g., industry insights, tips)"),
                QStringLiteral("Email 4: Gentle reminder and restate benefits"),
                QStringLiteral("Email 5: Final outreach with a strong call-to-action"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a helpful and informative tone"),
                QStringLiteral("Gradually increase urgency throughout the sequence"),
                QStringLiteral("Personalize each email to the prospect's situation"),
            },
            .closing = QStringLiteral("Ensure each email ends with a clear next step or call-to-action, becoming more direct in later emails."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Value Proposition Builder"),
        .description = QStringLiteral("Craft compelling value propositions that resonate with your target market"),
        .color = QStringLiteral("red"),
        .inputs = {
            F::text(QStringLiteral("Product/Service Name"), QStringLiteral("Enter your product or service name")),
            F::textArea(QStringLiteral("Key Features"), QStringLiteral("List the main features of your offering")),
            F::textArea(QStringLiteral("Customer Pain Points"), QStringLiteral("Describe the problems your offering solves")),
            F::text(QStringLiteral("Target Market")),
            F::textArea(QStringLiteral("Competitive Advantages"), QStringLiteral("What sets you apart from competitors?")),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Develop a clear and compelling value proposition that communicates your unique value to the target market."),
            .structure = {
                QStringLiteral("Identify the target customer and their key challenges"),
                QStringLiteral("Clearly state what your offering does"),
                QStringLiteral("Explain the specific benefits and outcomes"),
                QStringLiteral("Highlight your unique differentiators"),
                QStringLiteral("Craft a concise value proposition statement"),
            },
            .toneGuidelines = {
                QStringLiteral("Use clear, benefit-focused language"),
                QStringLiteral("Be specific and avoid generic claims"),
                QStringLiteral("Maintain a confident and customer-centric tone"),
            },
            .closing = QStringLiteral("Conclude with a powerful, concise statement that encapsulates your unique value."),
        },
    });

    entries.append({
        .id = QUuid::createUuid(),
        .icon = {},
        .title = QStringLiteral("Sales Presentation Outline"),
        .description = QStringLiteral("Structure impactful sales presentations that guide prospects to a buying decision"),
        .color = QStringLiteral("indigo"),
        .inputs = {
            F::text(QStringLiteral("Prospect/Company Name")),
            F::textArea(QStringLiteral("Prospect Overview"), QStringLiteral("Describe the prospect and their needs")),
            F::select(QStringLiteral("Presentation Duration"),
                      {QStringLiteral("15 minutes"), QStringLiteral("30 minutes"), QStringLiteral("45 minutes"),
                       QStringLiteral("60 minutes")}),
            F::textArea(QStringLiteral("Key Selling Points"), QStringLiteral("List your main selling points")),
            F::select(QStringLiteral("Presentation Style"),
                      {QStringLiteral("Storytelling"), QStringLiteral("Data-driven"), QStringLiteral("Demo-focused"),
                       QStringLiteral("Consultative")}),
        },
        .promptTemplate = {
            .introduction = QStringLiteral("Create a compelling sales presentation outline that effectively communicates your value and guides the prospect towards a decision."),
            .structure = {
                QStringLiteral("Engaging opening that captures attention"),
                QStringLiteral("Establish credibility and rapport"),
                QStringLiteral("Present the prospect's challenges or opportunities"),
                QStringLiteral("Introduce your solution and its unique benefits"),
                QStringLiteral("Provide evidence, case studies, or demonstrations"),
                QStringLiteral("Address likely objections and questions"),
                QStringLiteral("Summarize key points and present next steps"),
            },
            .toneGuidelines = {
                QStringLiteral("Maintain a professional yet conversational tone"),
                QStringLiteral("Use storytelling techniques to illustrate points"),
                QStringLiteral("Focus on the prospect's specific needs and outcomes"),
            },
            .closing = QStringLiteral("End with a clear call-to-action and a compelling reason to move forward."),
        },
    });

    return AssistantTable(std::move(entries));
}

} // namespace

const AssistantTable &salesAssistants()
{
    static const AssistantTable table = buildSalesAssistants();
    return table;
}

} // namespace zentrik

#pragma once

#include "Dice.h"
#include "FakeMediaService.h"
#include "Tally.h"

/// What the media service answers during a round: mostly what its tree holds, else something a
/// correct service would never say.
class FaultyAnswers
{
public:
    FaultyAnswers(Dice &dice, Tally &tally, const FakeMediaService &service)
        : m_dice(dice)
        , m_tally(tally)
        , m_service(service)
    {
    }

    /// How many calls of a hundred get a faulty answer.
    void setRate(int percent) { m_rate = percent; }
    FakeReply answer(const FakeCall &call);

private:
    FakeReply wrongSignature();
    FakeReply strangeValues(const FakeCall &call);
    FakeReply hugeListing(const FakeCall &call);
    QVariantMap strangeObject();

    Dice &m_dice;
    Tally &m_tally;
    const FakeMediaService &m_service;
    int m_rate = 0;
};

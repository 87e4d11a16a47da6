// SPDX-License-Identifier: MIT
// Cavities that are found ahead of their insertion, several at a time.
#include "Scouts.h"

namespace TULO3D {

Scouts::Scouts(const InsertionOrder& next, const StartFinder& startFinder,
    const BatchTests& batchTests, const ArdoTest3& adaptiveTests)
    : finder(startFinder), tests(batchTests), predicates(adaptiveTests), ahead(next)
{
	for (std::size_t place = 0; place < kNumScouts; ++place) send(place);
}

Scouts::~Scouts()
{
	for (Scout& scout : scouts) scout.giveUp();
}

void Scouts::send(std::size_t place)
{
	if (ahead.isAtEnd()) return;
	scouts[place].setOut(static_cast<Scout::Claims>(1U << place), *ahead, finder);
	++ahead;
}

const Scout& Scouts::await()
{
	const Scout& first = scouts[firstPlace];
	while (first.isOnItsWay()) {
		for (Scout& scout : scouts) scout.advance(tests, predicates);
	}
	return first;
}

void Scouts::goOn(Scout::Claims disturbed)
{
	Scout& first = scouts[firstPlace];
	++numBack;
	numFound += first.hasFound();
	if (numBack == kTrial) {
		bPays = numFound >= kTrial / 8;
		numBack = numFound = 0;
	}
	for (Scout& scout : scouts) scout.giveUpIfAmong(disturbed);
	first.rest();
	send(firstPlace);
	firstPlace = (firstPlace + 1) % kNumScouts;
}

} // namespace TULO3D

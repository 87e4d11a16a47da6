# SPDX-License-Identifier: MIT
"""What all tests share: nothing is ever printed."""

import pytest
from hypothesis import HealthCheck, settings

settings.register_profile(
    "tulo3d",
    deadline=None,
    derandomize=True,
    database=None,
    max_examples=60,
    suppress_health_check=[HealthCheck.function_scoped_fixture],
)
settings.load_profile("tulo3d")


@pytest.fixture(autouse=True)
def nothing_is_printed(capfd):
    yield
    assert capfd.readouterr() == ("", "")

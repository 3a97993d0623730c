# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""Settings that make every run the same, and what the tests share."""

import hypothesis
import numpy as np
import pytest

hypothesis.settings.register_profile(
    "repeatable", derandomize=True, database=None, deadline=None, max_examples=25, print_blob=False
)
hypothesis.settings.load_profile("repeatable")


@pytest.fixture
def rng():
    return np.random.default_rng(20110719)

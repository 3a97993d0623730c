# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

import ray
from straighten import straighten

pages = ray.data.read_webdataset("s3://scans/", decoder=None)
pages = pages.map(lambda page: {**page, "jpg": straighten(page["jpg"])})
pages.write_webdataset("s3://straight/", encoder=None)

# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

from pyspark.sql import SparkSession
from pyspark.sql.functions import udf
from straighten import straighten

spark = SparkSession.builder.getOrCreate()
pages = spark.read.format("binaryFile").option("pathGlobFilter", "*.jpg").load("s3a://scans/")
straight = pages.select("path", udf(straighten, "binary")("content").alias("content"))
straight.write.parquet("s3a://straight/")

# SPDX-FileCopyrightText: 2026 The OPCV_dlib authors
# SPDX-License-Identifier: MIT

"""A folder as an object store: rclone's WebDAV server on the loopback interface, which clients know as `store:`."""

import os
import socket

import processes
from slurm_host import free_ports


class Store:
    def __init__(self, root):
        self.root = root
        (self.port,) = free_ports(1)
        self.environment = dict(
            os.environ,
            RCLONE_CONFIG=str(root / "no-rclone.conf"),
            RCLONE_LOG_LEVEL="ERROR",
            RCLONE_CONFIG_STORE_TYPE="webdav",
            RCLONE_CONFIG_STORE_URL=f"http://127.0.0.1:{self.port}",
        )
        self.start()

    def start(self):
        command = ["rclone", "serve", "webdav", "--addr", f"127.0.0.1:{self.port}", self.root]
        self.server = processes.start(command, self.root / "store.log", env=self.environment, start_new_session=True)
        processes.wait_until(self.answers, 20, "the store")

    def stop(self):
        """Like a power failure: uploads are cut."""
        self.server.kill()
        self.server.wait()

    def answers(self):
        try:
            socket.create_connection(("127.0.0.1", self.port), 1).close()
        except OSError:
            return False
        return True
